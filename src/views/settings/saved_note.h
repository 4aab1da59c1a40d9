// What was saved last, for as long as the store says so. It keeps its place when there is nothing to say.
#pragma once

#include <optional>
#include <string>

#include "base/published.h"
#include "views/components/ov_widget.h"

namespace ovrin {

class SavedNote final : public OVWidget {
    Q_OBJECT

public:
    // The message outlives it.
    SavedNote(ViewEnvironment& environment, const Published<std::optional<std::string>>& message,
              QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString message_;
    Subscription changes_;
};

}  // namespace ovrin
