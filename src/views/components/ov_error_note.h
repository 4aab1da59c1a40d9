// What went wrong, in words that wrap anywhere and can be selected and copied, on a ground that stands out. The Tab key
// reaches the words.
#pragma once

#include <optional>
#include <string>

#include "views/components/ov_widget.h"

namespace ovrin {

class OVStreamingText;

class OVErrorNote final : public OVWidget {
    Q_OBJECT

public:
    explicit OVErrorNote(ViewEnvironment& environment, QWidget* parent = nullptr);

    // UTF-8, cut with an ellipsis where it is very long; hidden when there is nothing to say.
    void setMessage(const std::optional<std::string>& message);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    OVStreamingText* words_;
};

}  // namespace ovrin
