#include "sample_program/page_view.h"

#include <QFontMetrics>
#include <QPainter>
#include <string>

#include "practice/page_text.h"

namespace ovrin {
namespace {

constexpr int pageWidth = 1160;
constexpr int margin = 72;
constexpr int labelColumn = 132;
constexpr int lineHeight = 44;
constexpr int sectionGap = 26;
constexpr int roomAround = 6;
constexpr int titleSize = 34;
constexpr int textSize = 23;
constexpr int labelSize = 16;

const QColor paper(0xFBF8F1);
const QColor ink(0x22262A);
const QColor accent(0xA4502F);
const QColor rule(0xDED6C6);

QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// The glyphs of one character differ from language to language.
QString familyFor(std::string_view languageTag) {
    if (languageTag == "ja") return QStringLiteral("Noto Sans CJK JP");
    if (languageTag == "ko") return QStringLiteral("Noto Sans CJK KR");
    return QStringLiteral("Noto Sans CJK SC");
}

QFont fontOf(const QString& family, int pixelSize, QFont::Weight weight = QFont::Normal) {
    QFont font(family);
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    return font;
}

}  // namespace

PageView::PageView() {
    layOut();
    setWindowTitle(toQString(pageTitle));
}

void PageView::layOut() {
    const QFont titleFont = fontOf(QStringLiteral("Noto Serif CJK SC"), titleSize, QFont::Bold);
    int y = margin + QFontMetrics(titleFont).ascent() - 12;
    texts_.push_back({.text = toQString(pageTitle), .font = titleFont, .color = ink, .baseline = {margin, y}});
    y += 34;
    for (const PageSection& section : pageSections()) {
        rules_.push_back(y);
        y += sectionGap;
        const QString family = familyFor(section.languageTag);
        const QFont font = fontOf(family, textSize);
        const QFontMetrics metrics(font);
        const int firstBaseline = y + metrics.ascent();
        texts_.push_back({.text = toQString(section.name),
                          .font = fontOf(family, labelSize, QFont::DemiBold),
                          .color = accent,
                          .baseline = {margin, firstBaseline}});
        for (const PageSentence& sentence : section.sentences) {
            const QString text = toQString(*sentenceIn(sentence, section.languageTag));
            const QPoint baseline(margin + labelColumn, y + metrics.ascent());
            texts_.push_back({.text = text, .font = font, .color = ink, .baseline = baseline});
            const QRect letters = metrics.tightBoundingRect(text).translated(baseline);
            lines_.push_back(
                {.text = text, .area = letters.adjusted(-roomAround, -roomAround, roomAround, roomAround)});
            y += lineHeight;
        }
        y += sectionGap - 12;
    }
    setFixedSize(pageWidth, y + margin - sectionGap);
}

void PageView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), paper);
    painter.setPen(rule);
    for (const int y : rules_) painter.drawLine(margin, y, width() - margin, y);
    for (const Text& text : texts_) {
        painter.setFont(text.font);
        painter.setPen(text.color);
        painter.drawText(text.baseline, text.text);
    }
}

}  // namespace ovrin
