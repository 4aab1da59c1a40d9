#include "views/components/line_typesetting.h"

#include <QTextCharFormat>
#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>

#include "views/components/drawing.h"

namespace ovrin {

using Kind = MarkdownLine::Kind;

namespace {

constexpr theme::FontStyle codeFont{12, theme::FontWeight::regular, theme::FontDesign::monospaced};
constexpr double bodyLine = 21;
constexpr double codeLine = 18;

theme::FontStyle headingFont(int level) {
    constexpr std::array sizes{17.0, 15.0, 14.0};
    return {sizes[static_cast<std::size_t>(std::clamp(level, 1, 3) - 1)], theme::FontWeight::semibold,
            theme::FontDesign::standard};
}

bool isChineseOrJapanese(std::string_view language) {
    return language.starts_with("zh") || language.starts_with("ja");
}

// Letters, digits and marks of the scripts that are written in letters.
bool isOfAlphabets(QChar character) {
    constexpr char16_t middleDot = 0xB7;  // in Chinese between the parts of a name
    return character.unicode() < 0x2000 && character.unicode() != middleDot;
}

// Chinese and Japanese are set in a face of their own, and the letters among them as everywhere in the window.
bool usesTwoFaces(const MarkdownLine& line, const MarkdownSpan& span, const DocumentLook& look) {
    return !look.interfaceStyle && isChineseOrJapanese(look.language) && line.kind != Kind::code && !span.isCode;
}

QFont fontOf(const MarkdownLine& line, const MarkdownSpan& span, const DocumentLook& look) {
    if (look.interfaceStyle) return toQFont(look.interfaceStyle->font, look.language);
    theme::FontStyle style = theme::font::body;
    if (line.kind == Kind::heading) style = headingFont(line.level);
    if (line.kind == Kind::code) style = codeFont;
    if (span.isCode) style = {style.size - 1, style.weight, theme::FontDesign::monospaced};
    if (span.isBold) style.weight = theme::FontWeight::semibold;
    QFont font = toQFont(style, look.language);
    font.setItalic(span.isItalic);
    if (!usesTwoFaces(line, span, look)) return font;
    // Quotation marks, dashes and dots are as wide as the characters around them only in a face made for those.
    QStringList families = font.families();
    families.push_back(families.takeFirst());
    font.setFamilies(families);
    return font;
}

}  // namespace

WrappedText::Metrics lineMetrics(const MarkdownLine& line, const DocumentLook& look) {
    if (look.interfaceStyle) return {.font = fontOf(line, {}, look), .lineHeight = look.interfaceStyle->lineHeight};
    const double height = line.kind == Kind::code      ? codeLine
                          : line.kind == Kind::heading ? headingFont(line.level).size + 9
                                                       : bodyLine;
    return {.font = fontOf(line, {}, look), .lineHeight = std::round(height), .followsText = line.kind != Kind::code};
}

QList<QTextLayout::FormatRange> lineFormats(const MarkdownLine& line, const DocumentLook& look) {
    QList<QTextLayout::FormatRange> formats;
    QTextCharFormat all;
    all.setForeground(line.kind == Kind::quote ? look.quietText : look.text);
    qsizetype covered = 0;
    const QStringList lettersFaces = toQFont(theme::font::body, look.language).families();
    const auto addOneFace = [&formats](qsizetype start, qsizetype end, const QTextCharFormat& format) {
        if (start < end) formats.push_back({static_cast<int>(start), static_cast<int>(end - start), format});
    };
    const auto add = [&](qsizetype start, qsizetype end, const QTextCharFormat& format, const MarkdownSpan& span = {}) {
        if (!usesTwoFaces(line, span, look)) return addOneFace(start, end, format);
        QTextCharFormat ofLetters = format;
        ofLetters.setFontFamilies(lettersFaces);
        while (start < end) {
            const bool areLetters = isOfAlphabets(line.text[start]);
            qsizetype next = start + 1;
            while (next < end && isOfAlphabets(line.text[next]) == areLetters) ++next;
            addOneFace(std::exchange(start, next), next, areLetters ? ofLetters : format);
        }
    };
    for (const MarkdownSpan& span : line.spans) {
        add(covered, span.start, all);
        QTextCharFormat format = all;
        format.setFont(fontOf(line, span, look));
        if (!span.link.isEmpty()) {
            format.setForeground(look.link);
            format.setFontUnderline(true);
        }
        covered = span.start + span.length;
        add(span.start, covered, format, span);
    }
    add(covered, line.text.size(), all);
    return formats;
}

}  // namespace ovrin
