// The captured picture with the translation laid over it in place: a dark label on every recognised paragraph.
#pragma once

#include <QImage>
#include <string>
#include <string_view>
#include <vector>

#include "base/image.h"
#include "recognition/image_overlay_layout.h"
#include "recognition/ocr_paragraph.h"
#include "views/components/ov_widget.h"

namespace ovrin {

class ImageOverlayView final : public OVWidget {
    Q_OBJECT

public:
    // language: that of the translation (a BCP-47 tag), for the shapes of its characters.
    ImageOverlayView(ViewEnvironment& environment, const Image& image, std::vector<OCRParagraph> paragraphs,
                     std::string language, QWidget* parent = nullptr);

    // UTF-8, one line for each paragraph.
    void setTranslatedText(std::string_view translatedText);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QSizeF imageSize() const;
    void drawPicture(QPainter& painter, const QRectF& place);
    void drawLabel(QPainter& painter, const overlay::Label& label) const;

    QImage image_;
    QImage scaled_;  // to the size it was last drawn in
    std::vector<OCRParagraph> paragraphs_;
    std::string language_;
    std::string translatedText_;
};

}  // namespace ovrin
