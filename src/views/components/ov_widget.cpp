#include "views/components/ov_widget.h"

#include <QAccessibleWidget>

namespace ovrin {

namespace {

// The toolkit itself takes a window of a class of ours for a part of one.
QAccessibleInterface* makeAccessible(const QString& className, QObject* object) {
    if (className != QLatin1String("ovrin::OVWidget")) return nullptr;
    auto* const widget = static_cast<OVWidget*>(object);
    if (widget->accessibleRole() != QAccessible::NoRole) return new QAccessibleWidget(widget, widget->accessibleRole());
    if (!widget->isWindow()) return nullptr;
    return new QAccessibleWidget(widget, widget->isModal() ? QAccessible::Dialog : QAccessible::Window);
}

}  // namespace

OVWidget::OVWidget(ViewEnvironment& environment, QWidget* parent) : QWidget(parent), environment_(environment) {
    QAccessible::installFactory(&makeAccessible);
    connect(&environment_, &ViewEnvironment::changed, this, qOverload<>(&QWidget::update));
}

}  // namespace ovrin
