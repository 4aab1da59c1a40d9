#include "views/settings/settings_line.h"

#include <QHBoxLayout>
#include <utility>

#include "views/components/drawing.h"
#include "views/components/ov_animated_icon.h"
#include "views/components/ov_streaming_text.h"

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr double iconSize = 11;
constexpr qsizetype longestError = 400;  // in UTF-16 units
constexpr double ringRadius = 4;
constexpr int ringPadding = 3;  // between the ring and the error
}  // namespace

SettingsLine::SettingsLine(ViewEnvironment& environment, QString hint, Place place, QWidget* parent)
    : OVWidget(environment, parent),
      hint_(std::move(hint)),
      place_(place),
      warning_(new OVAnimatedIcon(environment, OVIcon::triangleAlert, iconSize, ColorToken::red)),
      label_(new OVLabel(environment, QStringLiteral("字"), theme::font::caption, ColorToken::ink2,
                         OVLabel::Lines::wrapped)),
      errorText_(new OVStreamingText(environment, OVStreamingText::Mode::plain)) {
    const int lineHeight = label_->sizeHint().height();  // of Chinese, which is higher than other lines
    errorText_->setInterfaceStyle({.font = theme::font::caption, .lineHeight = static_cast<double>(lineHeight)});
    errorText_->setColor(ColorToken::red);
    errorText_->setFocusRing(*this, {.horizontalMargin = 0, .verticalMargin = 0, .radius = ringRadius});
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    row->addWidget(warning_, 0, Qt::AlignTop);
    row->addWidget(label_, 1);
    row->addWidget(errorText_, 1);
    warning_->setContentsMargins(0, 2, 0, 0);
    if (place == Place::reserved) setMinimumHeight(lineHeight);
    refresh();
}

void SettingsLine::setHint(const QString& hint) {
    if (std::exchange(hint_, hint) != hint) refresh();
}

void SettingsLine::setNote(const QString& note) {
    if (std::exchange(note_, note) != note) refresh();
}

void SettingsLine::setError(const QString& error) {
    const QString shown = beginning(error, longestError);
    if (std::exchange(error_, shown) != shown) refresh();
}

QString SettingsLine::words() const {
    if (!error_.isEmpty()) return error_;
    if (hint_.isEmpty() || note_.isEmpty()) return hint_ + note_;
    return hint_ + QStringLiteral(" · ") + note_;
}

void SettingsLine::refresh() {
    const bool isError = !error_.isEmpty();
    warning_->setVisible(isError);
    const int side = isError ? ringPadding : 0;
    layout()->setContentsMargins(side, 0, side, 0);
    errorText_->setVisible(isError);
    errorText_->setTextSoFar(error_.toStdString(), OVStreamingText::Progress::finished);
    errorText_->showPending();
    label_->setVisible(!isError);
    label_->setText(words());
    const bool isNeeded = place_ == Place::reserved || !words().isEmpty();
    // Until it has a place it would come up as a window of its own.
    if (!isNeeded || parentWidget() != nullptr) setVisible(isNeeded);
    emit changed();
}

QWidget& SettingsLine::errorText() const {
    return *errorText_;
}

}  // namespace ovrin
