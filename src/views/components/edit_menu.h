// The context menu of a text that can be edited: undo, redo, cut, copy, paste, select all.
#pragma once

class QLineEdit;
class QPoint;
class QTextEdit;

namespace ovrin {

class ViewEnvironment;

// Opens it at a place of the screen.
void showEditMenu(ViewEnvironment& environment, QLineEdit& field, const QPoint& place);
void showEditMenu(ViewEnvironment& environment, QTextEdit& editor, const QPoint& place);

}  // namespace ovrin
