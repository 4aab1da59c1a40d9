#include "views/settings/settings_line.h"

#include <QHBoxLayout>
#include <utility>

#include "views/components/drawing.h"
#include "views/components/ov_animated_icon.h"

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr double iconSize = 11;
constexpr qsizetype longestError = 400;  // in UTF-16 units
}  // namespace

SettingsLine::SettingsLine(ViewEnvironment& environment, const QString& hint, Place place, QWidget* parent)
    : OVWidget(environment, parent),
      hint_(hint),
      place_(place),
      warning_(new OVAnimatedIcon(environment, OVIcon::triangleAlert, iconSize, ColorToken::red)),
      label_(new OVLabel(environment, {}, theme::font::caption, ColorToken::ink2, OVLabel::Lines::wrapped)) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    row->addWidget(warning_, 0, Qt::AlignTop);
    row->addWidget(label_, 1);
    warning_->setContentsMargins(0, 2, 0, 0);
    if (place == Place::reserved) {
        label_->setText(QStringLiteral("字"));  // Chinese lines are higher than others
        setMinimumHeight(label_->sizeHint().height());
    }
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
    label_->setText(words());
    label_->setColor(isError ? ColorToken::red : ColorToken::ink2);
    setVisible(place_ == Place::reserved || !words().isEmpty());
    emit changed();
}

}  // namespace ovrin
