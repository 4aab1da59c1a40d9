// An editor for plain text of many lines, without a background of its own.
//
// What is pasted or dropped loses its formats; no text is dragged out of it. Tab moves on to the next control.
// Replacing the text from outside can be undone like typing, and leaves the caret at its end.
#pragma once

#include <QTextEdit>
#include <cstdint>

#include "theme/type_scale.h"
#include "views/components/view_environment.h"

namespace ovrin {

class OVTextEditor final : public QTextEdit {
    Q_OBJECT

public:
    OVTextEditor(ViewEnvironment& environment, const QString& placeholder, QWidget* parent = nullptr);

    enum class ReturnKey : std::uint8_t {
        beginsLine,
        submits  // Shift and Return begin a line
    };
    void setReturnKey(ReturnKey returnKey) { returnKey_ = returnKey; }
    // Before there is text. lineHeight in points.
    void setTextStyle(const theme::FontStyle& style, double lineHeight);
    double lineHeight() const { return lineHeight_; }

    void setPlaceholder(const QString& placeholder);
    void replaceText(const QString& text);
    // Keeps the text off the right edge, where the scroll bar stays.
    void setRightInset(int points) { setViewportMargins(0, 0, points, 0); }

signals:
    void submitted();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void insertFromMimeData(const QMimeData* source) override;

private:
    void applyColors();
    void spaceLines();

    ViewEnvironment& environment_;
    QString placeholder_;
    ReturnKey returnKey_ = ReturnKey::beginsLine;
    double lineHeight_ = 21;
};

}  // namespace ovrin
