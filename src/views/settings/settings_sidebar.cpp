#include "views/settings/settings_sidebar.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

#include "settings/settings_section.h"
#include "views/components/drawing.h"
#include "views/components/ov_brand_mark.h"
#include "views/components/ov_choice_bar.h"
#include "views/components/ov_label.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr int sidebarWidth = 190;
constexpr int panelMargin = 8;  // between the window's frame and the sidebar's ground
constexpr double panelRadius = 9;
constexpr int padding = 10;
constexpr int brandTop = 16;
constexpr int brandGap = 18;  // below the brand
constexpr double markSize = 26;
const theme::FontStyle nameFont{15, theme::FontWeight::semibold, theme::FontDesign::rounded};

OVIcon iconOf(SettingsSection section) {
    switch (section) {
        case SettingsSection::general:
            return OVIcon("slider.horizontal.3");
        case SettingsSection::service:
            return OVIcon("bolt.horizontal.circle");
        case SettingsSection::shortcuts:
            return OVIcon("command");
        case SettingsSection::advanced:
            return OVIcon("wrench.and.screwdriver");
        case SettingsSection::about:
            break;
    }
    return OVIcon("info.circle");
}

std::vector<OVChoiceBar::Choice> choices() {
    std::vector<OVChoiceBar::Choice> pages;
    for (const SettingsSection section : allSettingsSections) {
        pages.push_back({.title = toQString(title(section)), .icon = iconOf(section)});
    }
    return pages;
}

}  // namespace

SettingsSidebar::SettingsSidebar(ViewEnvironment& environment, const Published<std::string>& brandImage,
                                 QWidget* parent)
    : OVWidget(environment, parent), pages_(new OVChoiceBar(environment, {}, choices(), OVChoiceBar::Look::sidebar)) {
    setFixedWidth(sidebarWidth);
    auto* brand = new QHBoxLayout;
    brand->setContentsMargins(padding, 0, 0, 0);
    brand->setSpacing(9);
    brand->addWidget(new OVBrandMark(environment, markSize, brandImage));
    brand->addWidget(new OVLabel(environment, QStringLiteral("Ovrin"), nameFont, ColorToken::ink));
    brand->addStretch();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(panelMargin + padding, panelMargin + brandTop, padding, panelMargin + padding);
    column->setSpacing(brandGap);
    column->addLayout(brand);
    column->addWidget(pages_);
    column->addStretch();
}

void SettingsSidebar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor ground = color(ColorToken::inset);
    ground.setAlphaF(environment().isDark() ? 0.55F : 0.6F);
    fillRounded(painter, QRectF(rect()).adjusted(panelMargin, panelMargin, 0, -panelMargin), panelRadius, ground);
}

}  // namespace ovrin
