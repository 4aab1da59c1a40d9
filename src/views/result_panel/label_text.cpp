#include "views/result_panel/label_text.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

#include "recognition/image_overlay_layout.h"

namespace ovrin {

namespace {

constexpr int shrinkingSteps = 8;
// Of the font size. The boxes lie tightly around their lines, where the leading of a text would find no room.
constexpr double lineHeight = 1.2;
constexpr double middle = 0.36;  // of its characters above the baseline

int linesWithin(double height, double size) {
    return std::clamp(static_cast<int>(height / (lineHeight * size)), 1, overlay::labelMaximumLines);
}

}  // namespace

LabelText::LabelText(const QString& text, const QFont& font, double fontSize, const QSizeF& room)
    : font_(font), width_(std::max(room.width(), 1.0)) {
    const double smallest = fontSize * overlay::labelMinimumScale;
    for (int step = 0; step < shrinkingSteps; ++step) {
        const double size = std::lerp(fontSize, smallest, static_cast<double>(step) / shrinkingSteps);
        if (wrap(text, size, linesWithin(room.height(), size)) && fits(size, room.height())) return;
    }
    const int mostLines = linesWithin(room.height(), smallest);
    if (!wrap(text, smallest, mostLines)) wrap(cut(text), smallest, mostLines);
}

LabelText::~LabelText() = default;

// Whether the whole text has found room.
bool LabelText::wrap(const QString& text, double size, int mostLines) {
    font_.setPointSizeF(size * 72 / 96);  // between whole pixels too: labels are small
    height_ = 0;
    layout_ = std::make_unique<QTextLayout>(text, font_);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout_->setTextOption(option);
    layout_->beginLayout();
    int reached = 0;
    for (int i = 0; i < mostLines; ++i) {
        QTextLine line = layout_->createLine();
        if (!line.isValid()) break;
        line.setLineWidth(width_);
        line.setPosition({0, height_ + (lineHeight / 2 + middle) * size - line.ascent()});
        height_ += lineHeight * size;
        reached = line.textStart() + line.textLength();
    }
    layout_->endLayout();
    return reached >= text.size();
}

// A single line finds room for its characters, if not for its leading.
bool LabelText::fits(double size, double room) const {
    return height_ <= room || (lineCount() == 1 && size <= room);
}

// The text as far as it was wrapped, with an ellipsis at the end of the last line.
QString LabelText::cut(const QString& text) const {
    const int start = layout_->lineAt(layout_->lineCount() - 1).textStart();
    return text.first(start) + QFontMetricsF(font_).elidedText(text.sliced(start), Qt::ElideRight, width_);
}

int LabelText::lineCount() const {
    return layout_->lineCount();
}

QString LabelText::text() const {
    return layout_->text();
}

void LabelText::draw(QPainter& painter, const QPointF& origin) const {
    layout_->draw(&painter, origin);
}

}  // namespace ovrin
