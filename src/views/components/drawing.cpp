#include "views/components/drawing.h"

#include <QBitmap>
#include <QFile>
#include <QFontDatabase>
#include <QFontInfo>
#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <QPixmapCache>
#include <QStringList>
#include <QSvgRenderer>
#include <QTextBoundaryFinder>
#include <algorithm>
#include <cmath>

#include "views/components/view_environment.h"

namespace ovrin {

namespace {

QFont::Weight toQtWeight(theme::FontWeight weight) {
    switch (weight) {
        case theme::FontWeight::regular:
            return QFont::Normal;
        case theme::FontWeight::medium:
            return QFont::Medium;
        case theme::FontWeight::semibold:
            return QFont::DemiBold;
    }
    return QFont::Normal;
}

// Faces for the glyphs that the system's font lacks, best first.
QStringList fallbackFamilies(std::string_view language) {
    if (language.starts_with("ja")) return {"Noto Sans CJK JP", "Noto Sans JP", "Source Han Sans", "IPAexGothic"};
    if (language.starts_with("ko")) return {"Noto Sans CJK KR", "Noto Sans KR", "Source Han Sans K", "NanumGothic"};
    if (language.starts_with("zh-Hant")) {
        return {"Noto Sans CJK TC", "Noto Sans TC", "Source Han Sans TC", "WenQuanYi Micro Hei"};
    }
    return {"Noto Sans CJK SC", "Noto Sans SC", "Source Han Sans SC", "WenQuanYi Micro Hei", "WenQuanYi Zen Hei"};
}

QStringList families(theme::FontDesign design, std::string_view language) {
    const bool isFixed = design == theme::FontDesign::monospaced;
    const QFont system = QFontDatabase::systemFont(isFixed ? QFontDatabase::FixedFont : QFontDatabase::GeneralFont);
    // Under its real name: an alias such as "Sans Serif" would lose to every installed family that follows it.
    return QStringList{QFontInfo(system).family()} + fallbackFamilies(language);
}

QByteArray tinted(OVIcon icon, const QColor& color) {
    QFile file(QStringLiteral(":/icons/%1.svg").arg(toQString(icon.glyphName())));
    if (!file.open(QIODevice::ReadOnly)) return {};
    return file.readAll().replace("currentColor", color.name(QColor::HexRgb).toLatin1());
}

}  // namespace

QRectF toQRectF(const LocalRect& rectangle) {
    return {rectangle.x, rectangle.y, rectangle.width, rectangle.height};
}

QColor toQColor(const theme::Color& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

QString toQString(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

QString beginning(const QString& text, qsizetype length) {
    if (text.size() <= length) return text;
    const QString considered = text.left(length + 2);  // what follows the cut decides whether a character ends there
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, considered);
    characters.setPosition(length);
    if (!characters.isAtBoundary()) characters.toPreviousBoundary();
    return text.left(characters.position()) + QStringLiteral("…");
}

QImage toQImage(const Image& image) {
    if (image.isEmpty()) return {};
    return QImage(image.data(), image.width(), image.height(), static_cast<qsizetype>(image.bytesPerRow()),
                  QImage::Format_ARGB32)
        .copy();
}

QFont toQFont(const theme::FontStyle& style, std::string_view language) {
    QFont font;
    font.setFamilies(families(style.design, language));
    font.setWeight(toQtWeight(style.weight));
    // Sizes are in points of 1/72 inch at the desktop's 96 dots: one point is one logical pixel of the design.
    font.setPixelSize(static_cast<int>(std::lround(style.size)));
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

QPixmap iconPixmap(OVIcon icon, double size, const QColor& color, double devicePixelRatio) {
    const int pixels = std::max(1, static_cast<int>(std::lround(size * devicePixelRatio)));
    const QString key = QStringLiteral("ov-icon-%1-%2-%3-%4")
                            .arg(static_cast<int>(OVIcon::Case(icon)))
                            .arg(pixels)
                            .arg(color.rgba())
                            .arg(devicePixelRatio);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap)) return pixmap;

    pixmap = QPixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setOpacity(color.alphaF());
    QSvgRenderer(tinted(icon, color)).render(&painter);
    painter.end();
    pixmap.setDevicePixelRatio(devicePixelRatio);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

void drawIcon(QPainter& painter, OVIcon icon, const QRectF& rectangle, double size, const QColor& color) {
    const double ratio = painter.device()->devicePixelRatioF();
    const QPixmap pixmap = iconPixmap(icon, size, color, ratio);
    // On whole device pixels, so that one-pixel strokes stay sharp.
    const auto snapped = [ratio](double value) { return std::round(value * ratio) / ratio; };
    painter.drawPixmap(QPointF(snapped(rectangle.center().x() - size / 2), snapped(rectangle.center().y() - size / 2)),
                       pixmap);
}

void fillRounded(QPainter& painter, const QRectF& rectangle, double radius, const QColor& color) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(rectangle, radius, radius);
}

QPalette fieldPalette(QPalette palette, const ViewEnvironment& environment) {
    palette.setColor(QPalette::Base, Qt::transparent);
    palette.setColor(QPalette::Text, environment.color(theme::ColorToken::ink));
    palette.setColor(QPalette::PlaceholderText, environment.color(theme::ColorToken::ink3));
    QColor selection = environment.color(theme::ColorToken::accent);
    selection.setAlphaF(0.35F);
    palette.setColor(QPalette::Highlight, selection);
    palette.setColor(QPalette::HighlightedText, environment.color(theme::ColorToken::ink));
    return palette;
}

void drawFieldGround(QPainter& painter, const QRectF& rectangle, double radius, bool hasFocus,
                     const ViewEnvironment& environment) {
    fillRounded(painter, rectangle, radius, environment.color(theme::ColorToken::inset));
    // Without a line it would hardly stand out from a card in the dark appearance.
    QColor line = environment.color(hasFocus ? theme::ColorToken::accent : theme::ColorToken::ink);
    line.setAlphaF(hasFocus ? 0.8F : environment.isDark() ? 0.10F : 0.05F);
    const double width = hasFocus ? 1.5 : 1;
    painter.setPen(QPen(line, width));
    painter.setBrush(Qt::NoBrush);
    const double inset = width / 2;
    painter.drawRoundedRect(rectangle.adjusted(inset, inset, -inset, -inset), radius - inset, radius - inset);
}

QBitmap roundedShape(const QSize& size, double radius) {
    QBitmap shape(size);
    shape.fill(Qt::color0);
    QPainter painter(&shape);
    fillRounded(painter, QRectF(QPointF(), size), radius, Qt::color1);
    return shape;
}

void drawShadow(QPainter& painter, const QRectF& rectangle, double radius, double blur, double verticalOffset,
                const QColor& color) {
    QPainterPath outside;
    outside.addRect(rectangle.adjusted(-3 * blur, -3 * blur, 3 * blur, 3 * blur));
    QPainterPath inside;
    inside.addRoundedRect(rectangle, radius, radius);
    painter.save();
    painter.setClipPath(outside.subtracted(inside));
    // Rings of falling opacity stand in for a Gaussian whose deviation is half the blur radius.
    const int rings = std::max(1, static_cast<int>(std::ceil(blur)));
    for (int ring = rings; ring >= 1; --ring) {
        const double spread = blur * ring / rings;
        QColor shade = color;
        const double falloff = 1 - static_cast<double>(ring) / (rings + 1);
        shade.setAlphaF(static_cast<float>(color.alphaF() * 2 * falloff / (rings + 1)));
        fillRounded(painter, rectangle.adjusted(-spread, verticalOffset - spread, spread, verticalOffset + spread),
                    radius + spread, shade);
    }
    painter.restore();
}

}  // namespace ovrin
