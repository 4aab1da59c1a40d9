// From the theme's plain values to the toolkit's colours, fonts and pictures.
#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPalette>
#include <QPixmap>
#include <QRectF>
#include <QString>
#include <string_view>

#include "base/geometry.h"
#include "base/image.h"
#include "theme/color_token.h"
#include "theme/ov_icon.h"
#include "theme/type_scale.h"

class QBitmap;
class QPainter;

namespace ovrin {

class ViewEnvironment;

QRectF toQRectF(const LocalRect& rectangle);

QColor toQColor(const theme::Color& color);

QString toQString(std::string_view utf8);

// The text, or its beginning of at most so many UTF-16 units and an ellipsis, cut between characters. For words of
// others, which may be a megabyte: laying that out would stop the main thread for seconds.
QString beginning(const QString& text, qsizetype length);

// A copy of the pixels.
QImage toQImage(const Image& image);

// The system's font in the given style. Glyphs that it lacks come from a face of the text's language (a BCP-47 tag;
// Simplified Chinese, the language of the program, when none is given), so that Chinese never falls back to a Japanese
// face.
QFont toQFont(const theme::FontStyle& style, std::string_view language = "zh-Hans");

// The icon as a template picture: its strokes in the given colour. size is its side in points; the pixmap has the given
// device pixel ratio.
QPixmap iconPixmap(OVIcon icon, double size, const QColor& color, double devicePixelRatio);

// Draws the icon centred in the rectangle, with a side of size points.
void drawIcon(QPainter& painter, OVIcon icon, const QRectF& rectangle, double size, const QColor& color);

// Fills a rounded rectangle without outline.
void fillRounded(QPainter& painter, const QRectF& rectangle, double radius, const QColor& color);

// The colours of what can be typed in.
QPalette fieldPalette(QPalette palette, const ViewEnvironment& environment);

// The ground of what can be typed in, with a ring while it has the keyboard.
void drawFieldGround(QPainter& painter, const QRectF& rectangle, double radius, bool hasFocus,
                     const ViewEnvironment& environment);

// A rounded rectangle as the shape of a window, for screens that nothing composites.
QBitmap roundedShape(const QSize& size, double radius);

// A soft shadow around a rounded rectangle, drawn outside of it only. blur and offset are in points.
void drawShadow(QPainter& painter, const QRectF& rectangle, double radius, double blur, double verticalOffset,
                const QColor& color);

}  // namespace ovrin
