#include "views/components/ov_widget.h"

#include <QAccessibleWidget>

namespace ovrin {

namespace {

// The toolkit itself takes a window of a class of ours for a part of one.
class Accessible final : public QAccessibleWidget {
public:
    explicit Accessible(OVWidget* widget) : QAccessibleWidget(widget) {}

    // When it is asked for: a part is made without a parent and may be known before it has one.
    QAccessible::Role role() const override {
        const auto* const shown = static_cast<const OVWidget*>(widget());
        if (shown->accessibleRole() != QAccessible::NoRole) return shown->accessibleRole();
        if (!shown->isWindow()) return QAccessibleWidget::role();
        return shown->isModal() ? QAccessible::Dialog : QAccessible::Window;
    }
};

QAccessibleInterface* makeAccessible(const QString& className, QObject* object) {
    if (className != QLatin1String("ovrin::OVWidget")) return nullptr;
    return new Accessible(static_cast<OVWidget*>(object));
}

}  // namespace

OVWidget::OVWidget(ViewEnvironment& environment, QWidget* parent) : QWidget(parent), environment_(environment) {
    QAccessible::installFactory(&makeAccessible);
    connect(&environment_, &ViewEnvironment::changed, this, qOverload<>(&QWidget::update));
}

}  // namespace ovrin
