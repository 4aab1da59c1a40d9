#include "views/settings/settings_card.h"

#include <QVBoxLayout>

#include "views/components/ov_hairline.h"
#include "views/components/ov_label.h"
#include "views/components/ov_surface.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr double cornerRadius = 12;
constexpr int padding = 16;
constexpr int formPadding = 10;  // above and below rows that no lines separate
constexpr int titleGap = 7;
const theme::FontStyle titleFont{12, theme::FontWeight::semibold, theme::FontDesign::standard};

}  // namespace

SettingsCard::SettingsCard(ViewEnvironment& environment, const QString& title, Rows rows, QWidget* parent)
    : OVWidget(environment, parent), separation_(rows) {
    auto* surface = new OVSurface(environment, cornerRadius, OVSurface::Elevation::flat);
    rows_ = new QVBoxLayout(surface);
    const int vertical = rows == Rows::together ? formPadding : 0;
    rows_->setContentsMargins(padding, vertical, padding, vertical);
    rows_->setSpacing(0);
    auto* heading = new OVLabel(environment, title, titleFont, ColorToken::ink2);
    heading->setContentsMargins(padding, 0, padding, 0);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(titleGap);
    column->addWidget(heading);
    column->addWidget(surface);
}

void SettingsCard::addRow(QWidget* row) {
    if (separation_ == Rows::separated && rows_->count() > 0)
        rows_->addWidget(new OVHairline(environment(), {.light = 0.07F, .dark = 0.09F}));
    rows_->addWidget(row);
}

}  // namespace ovrin
