// The program's icon as a mark in its windows. It follows the user's choice of the icon.
#pragma once

#include <string>

#include "base/published.h"
#include "views/components/ov_widget.h"

namespace ovrin {

class OVBrandMark final : public OVWidget {
    Q_OBJECT

public:
    // size is its side in points. image is the name of the icon's asset, such as "EntranceIconLight"; it outlives the
    // mark.
    OVBrandMark(ViewEnvironment& environment, double size, const Published<std::string>& image,
                QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double size_;
    const Published<std::string>& image_;
    Subscription changes_;
};

}  // namespace ovrin
