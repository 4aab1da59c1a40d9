// An editor for plain text of many lines, without a background of its own.
//
// What is pasted or dropped loses its formats; no text is dragged out of it. Tab moves on to the next control.
// Replacing the text from outside can be undone like typing, and leaves the caret at its end.
#pragma once

#include <QTextEdit>

#include "views/components/view_environment.h"

namespace ovrin {

class OVTextEditor final : public QTextEdit {
    Q_OBJECT

public:
    OVTextEditor(ViewEnvironment& environment, const QString& placeholder, QWidget* parent = nullptr);

    void setPlaceholder(const QString& placeholder);
    void replaceText(const QString& text);
    // Keeps the text off the right edge, where the scroll bar stays.
    void setRightInset(int points) { setViewportMargins(0, 0, points, 0); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void insertFromMimeData(const QMimeData* source) override;

private:
    void applyColors();
    void spaceLines();

    ViewEnvironment& environment_;
    QString placeholder_;
};

}  // namespace ovrin
