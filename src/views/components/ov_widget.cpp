#include "views/components/ov_widget.h"

namespace ovrin {

OVWidget::OVWidget(ViewEnvironment& environment, QWidget* parent) : QWidget(parent), environment_(environment) {
    connect(&environment_, &ViewEnvironment::changed, this, qOverload<>(&QWidget::update));
}

}  // namespace ovrin
