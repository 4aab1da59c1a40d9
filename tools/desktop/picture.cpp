#include "desktop/picture.h"

#include <algorithm>

namespace ovrin {
namespace {

template <typename Use>
void forEachGray(const QImage& picture, Use use) {
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) use(qGray(picture.pixel(x, y)));
    }
}

}  // namespace

double brightness(const QImage& picture) {
    double sum = 0;
    forEachGray(picture, [&](int gray) { sum += gray; });
    return sum / (static_cast<double>(picture.width()) * picture.height());
}

int contrast(const QImage& picture) {
    int darkest = 255;
    int brightest = 0;
    forEachGray(picture, [&](int gray) {
        darkest = std::min(darkest, gray);
        brightest = std::max(brightest, gray);
    });
    return std::max(brightest - darkest, 0);
}

}  // namespace ovrin
