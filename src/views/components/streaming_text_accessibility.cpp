#include "views/components/streaming_text_accessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <algorithm>
#include <utility>

#include "views/components/ov_streaming_text.h"

namespace ovrin {

namespace {

int toInt(qsizetype offset) {
    return static_cast<int>(offset);
}

class AccessibleStreamingText final : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit AccessibleStreamingText(OVStreamingText* text) : QAccessibleWidget(text), text_(text) {}

    QAccessible::Role role() const override {
        return text_->accessibleName().isEmpty() ? QAccessible::StaticText : QAccessible::EditableText;
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = true;
        state.multiLine = true;
        state.selectableText = true;
        return state;
    }
    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Name && text_->accessibleName().isEmpty()) return text_->plainText();
        return QAccessibleWidget::text(kind);
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    int characterCount() const override { return toInt(document().plainLength()); }
    QString text(int begin, int end) const override { return text_->plainText().mid(begin, end - begin); }
    QString attributes(int /*offset*/, int* begin, int* end) const override {
        *begin = 0;
        *end = characterCount();
        return {};
    }

    // Lines are those on the screen; all other units are the toolkit's own.
    QString textAtOffset(int offset, QAccessible::TextBoundaryType unit, int* begin, int* end) const override {
        if (unit != QAccessible::LineBoundary) {
            return QAccessibleTextInterface::textAtOffset(offset, unit, begin, end);
        }
        return lineAround(offset, begin, end);
    }
    QString textBeforeOffset(int offset, QAccessible::TextBoundaryType unit, int* begin, int* end) const override {
        if (unit != QAccessible::LineBoundary) {
            return QAccessibleTextInterface::textBeforeOffset(offset, unit, begin, end);
        }
        const qsizetype line = document().plainLineAt(offset).begin;
        if (line == 0) return noLine(begin, end);
        return lineAround(document().offsetOf(document().previousCharacter(document().positionAt(line))), begin, end);
    }
    QString textAfterOffset(int offset, QAccessible::TextBoundaryType unit, int* begin, int* end) const override {
        if (unit != QAccessible::LineBoundary) {
            return QAccessibleTextInterface::textAfterOffset(offset, unit, begin, end);
        }
        const qsizetype line = document().plainLineAt(offset).end;
        if (line == document().plainLength()) return noLine(begin, end);
        return lineAround(line + 1, begin, end);
    }

    int cursorPosition() const override { return toInt(document().offsetOf(text_->cursor())); }
    void setCursorPosition(int offset) override { select(offset, offset); }
    int selectionCount() const override { return text_->hasSelection() ? 1 : 0; }
    void selection(int /*index*/, int* begin, int* end) const override {
        *begin = toInt(document().offsetOf(text_->selection().begin));
        *end = toInt(document().offsetOf(text_->selection().end));
    }
    void addSelection(int begin, int end) override { select(begin, end); }
    void setSelection(int /*index*/, int begin, int end) override { select(begin, end); }
    void removeSelection(int /*index*/) override { text_->select(text_->cursor(), text_->cursor()); }

    QRect characterRect(int offset) const override {
        const QRect area = document().characterArea(document().positionAt(offset)).toAlignedRect();
        return {text_->mapToGlobal(area.topLeft()), area.size()};
    }
    int offsetAtPoint(const QPoint& point) const override {
        return toInt(document().offsetOf(document().at(text_->mapFromGlobal(point))));
    }
    void scrollToSubstring(int begin, int /*end*/) override {
        emit text_->cursorMoved(document().areaOf(document().positionAt(begin)).toAlignedRect());
    }

private:
    const StreamedDocument& document() const { return text_->document(); }
    void select(int anchor, int cursor) { text_->select(document().positionAt(anchor), document().positionAt(cursor)); }
    QString lineAround(qsizetype offset, int* begin, int* end) const {
        const auto line = document().plainLineAt(offset);
        *begin = toInt(line.begin);
        *end = toInt(line.end);
        return text(*begin, *end);
    }
    static QString noLine(int* begin, int* end) {
        *begin = *end = -1;
        return {};
    }

    OVStreamingText* text_;
};

QAccessibleInterface* makeAccessibleStreamingText(const QString& className, QObject* object) {
    if (className != QLatin1String("ovrin::OVStreamingText")) return nullptr;
    return new AccessibleStreamingText(static_cast<OVStreamingText*>(object));
}

}  // namespace

void installStreamingTextAccessibility() {
    QAccessible::installFactory(&makeAccessibleStreamingText);
}

void tellTextChange(OVStreamingText& text, const QString& before) {
    const QString now = text.plainText();
    const auto [changed, inserted] = std::mismatch(before.begin(), before.end(), now.begin(), now.end());
    const QString removed = before.sliced(changed - before.begin());
    const QString news = now.sliced(inserted - now.begin());
    const int place = toInt(inserted - now.begin());
    if (!removed.isEmpty()) {
        QAccessibleTextUpdateEvent event(&text, place, removed, news);
        QAccessible::updateAccessibility(&event);
    } else if (!news.isEmpty()) {
        QAccessibleTextInsertEvent event(&text, place, news);
        QAccessible::updateAccessibility(&event);
    }
}

void tellSelection(OVStreamingText& text) {
    const auto offset = [&text](const OVStreamingText::Position& position) {
        return toInt(text.document().offsetOf(position));
    };
    QAccessibleTextCursorEvent cursor(&text, offset(text.cursor()));
    QAccessible::updateAccessibility(&cursor);
    QAccessibleTextSelectionEvent selection(&text, offset(text.selection().begin), offset(text.selection().end));
    selection.setCursorPosition(offset(text.cursor()));
    QAccessible::updateAccessibility(&selection);
}

void tellEndOfText([[maybe_unused]] OVStreamingText& text) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    if (text.accessibleName().isEmpty() || !text.isVisible()) return;
    QAccessibleAnnouncementEvent event(&text, QStringLiteral("%1已完成").arg(text.accessibleName()));
    QAccessible::updateAccessibility(&event);
#endif
}

}  // namespace ovrin
