// A place in the order of Tab for widgets that come later than those around them.
#pragma once

class QWidget;

namespace ovrin {

// What Tab reaches before it comes to the widget, which itself need not be reached; null where it is the first.
QWidget* tabStopBefore(QWidget& widget);

}  // namespace ovrin
