// Read-only text that grows while it is read: model answers in light Markdown, and plain source texts and translations.
//
// It can be selected with mouse and keyboard while text is still appended. What arrives within one frame (16 ms) is
// laid out and painted once, and only from the line that grew on. Its height follows from its width, so it belongs into
// a layout inside a scroll area.
//
// To assistive technology it is an area of text under its accessible name, or without one a label that says its words;
// either can be read by character and line and selected, and tells what is inserted, once a frame.
#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QPoint>
#include <QPointer>
#include <QUrl>
#include <optional>
#include <string>
#include <string_view>

#include "views/components/ov_focus_ring.h"
#include "views/components/ov_widget.h"
#include "views/components/streamed_document.h"

namespace ovrin {

class OVStreamingText final : public OVWidget {
    Q_OBJECT

public:
    using Mode = StreamedDocument::Mode;
    enum class Progress : std::uint8_t { streaming, finished };

    OVStreamingText(ViewEnvironment& environment, Mode mode, QWidget* parent = nullptr);
    OVStreamingText(const OVStreamingText&) = delete;
    OVStreamingText& operator=(const OVStreamingText&) = delete;
    ~OVStreamingText() override;

    // The whole text so far, in UTF-8. What it begins with is usually the text before, and only the rest is read.
    void setTextSoFar(std::string_view utf8, Progress progress);
    // Lays out at once what waits for the next frame.
    void showPending();

    // The language of the text (a BCP-47 tag), which decides on the shapes of Chinese characters.
    void setLanguage(std::string_view tag);
    void setColor(theme::ColorToken color);
    void setInterfaceStyle(const InterfaceStyle& style);
    // The ring that shows that the keyboard reached the text goes around this part of the window instead of the text.
    void setFocusRing(QWidget& around, const OVFocusRing::Shape& shape);

    // What is shown, and what of it is selected, as it would be copied.
    QString plainText() const { return document_.plainText(); }
    QString selectedText() const { return document_.text(selection()); }
    bool hasSelection() const { return anchor_ != cursor_; }
    void selectAll();
    void copy() const;  // to the clipboard; nothing without a selection

    // Places in the text: the selection reaches from where it began to the cursor, which is moved.
    using Position = StreamedDocument::Position;
    using Range = StreamedDocument::Range;
    const StreamedDocument& document() const { return document_; }
    Range selection() const { return {std::min(anchor_, cursor_), std::max(anchor_, cursor_)}; }
    Position cursor() const { return cursor_; }
    void select(Position anchor, Position cursor);

    // Lays out for a width, in whole points, and gives the height; the width of its longest line, unwrapped.
    int layOut(int width);
    int naturalWidth();

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void linkActivated(const QUrl& target);
    // The selection was moved to this place (in the widget's coordinates), which wants to be seen.
    void cursorMoved(const QRect& area);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool event(QEvent* event) override;

private:
    enum class Unit : std::uint8_t { character, word, block };

    void applyLook();
    Range unitAt(Position position) const;
    void grip(const QPointF& point, Unit unit);
    void extendTo(const QPointF& point);
    std::optional<Position> moved(const QKeyEvent& event) const;
    Position movedVertically(int lines) const;
    bool isTripleClick(const QMouseEvent& event) const;

    StreamedDocument document_;
    theme::ColorToken color_ = theme::ColorToken::ink;
    std::string language_ = "zh-Hans";
    std::optional<InterfaceStyle> interfaceStyle_;

    std::string pendingText_;
    Progress pendingProgress_ = Progress::finished;
    bool isPending_ = false;
    Progress shownProgress_ = Progress::finished;
    QBasicTimer frame_;
    QElapsedTimer sinceFrame_;

    QWidget* ringedPart_ = this;
    OVFocusRing::Shape ringShape_;
    QPointer<OVFocusRing> ring_;  // may go with what it lies in

    Position anchor_;
    Position cursor_;
    // What a press took hold of, in which units; dragging goes on by whole ones and keeps it selected.
    Unit unit_ = Unit::character;
    Range grip_;
    bool isSelecting_ = false;
    QBasicTimer drag_;
    QElapsedTimer sinceDoubleClick_;
    QPoint doubleClickPosition_;
    QString pressedLink_;
};

}  // namespace ovrin
