// The picture "StatusBarIcon" as a template: its strokes in one colour, sharp at every size that panels show.
#pragma once

#include <QColor>
#include <QIcon>
#include <QImage>
#include <QList>

namespace ovrin {

// Device pixels 16 to 64. alpha: 0..1, over the colour's own.
QList<QImage> statusBarImages(const QColor& color, double alpha);

QIcon toQIcon(const QList<QImage>& sizes);

}  // namespace ovrin
