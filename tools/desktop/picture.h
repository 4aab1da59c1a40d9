// What can be told about a picture of the screen without knowing what is on it.
#pragma once

#include <QImage>

namespace ovrin {

// The mean of all pixels: 0 is black, 255 white.
double brightness(const QImage& picture);

// Between the darkest and the brightest pixel: 0 for a plain picture.
int contrast(const QImage& picture);

}  // namespace ovrin
