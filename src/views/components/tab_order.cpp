#include "views/components/tab_order.h"

#include <QWidget>

namespace ovrin {

QWidget* tabStopBefore(QWidget& widget) {
    for (QWidget* before = widget.previousInFocusChain(); before != &widget; before = before->previousInFocusChain()) {
        if (before->focusPolicy() != Qt::NoFocus) return before;
    }
    return nullptr;
}

}  // namespace ovrin
