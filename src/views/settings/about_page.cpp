#include "views/settings/about_page.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QSvgRenderer>
#include <QVBoxLayout>

#include "settings/settings_section.h"
#include "views/application/qt_application_icon.h"
#include "views/components/drawing.h"
#include "views/components/ov_animated_icon.h"
#include "views/components/ov_button.h"
#include "views/components/ov_label.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr int mascotSize = 148;
constexpr double warningIconSize = 13;
const theme::FontStyle nameFont{26, theme::FontWeight::semibold, theme::FontDesign::rounded};

class Mascot final : public OVWidget {
public:
    explicit Mascot(ViewEnvironment& environment) : OVWidget(environment) { setFixedSize(mascotSize, mascotSize); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        picture_.render(&painter, rect());
    }

private:
    QSvgRenderer picture_{QtApplicationIcon::file("AboutMascot")};
};

QWidget* makeWarning(ViewEnvironment& environment) {
    auto* warning = new QWidget;
    auto* row = new QHBoxLayout(warning);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    row->addWidget(
        new OVAnimatedIcon(environment, OVIcon("exclamationmark.triangle"), warningIconSize, ColorToken::orange));
    row->addWidget(
        new OVLabel(environment, QStringLiteral("自动更新尚未配置"), theme::font::caption, ColorToken::orange));
    return warning;
}

}  // namespace

AboutPage::AboutPage(ViewEnvironment& environment, SettingsViewModel& viewModel)
    : SettingsPage(environment, toQString(title(SettingsSection::about)), toQString(subtitle(SettingsSection::about)),
                   Content::centred) {
    auto* update = new OVButton(environment, QStringLiteral("检查更新…"), OVButton::Kind::secondary);
    update->setOVIcon(OVIcon::refresh);
    update->setEnabled(viewModel.isUpdateConfigured());
    connect(update, &QAbstractButton::clicked, this, [&viewModel] { viewModel.checkForUpdates(); });

    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    const auto add = [column](QWidget* part, int gap) {
        column->addSpacing(gap);
        column->addWidget(part, 0, Qt::AlignHCenter);
    };
    add(new Mascot(environment), 0);
    add(new OVLabel(environment, QStringLiteral("Ovrin"), nameFont, ColorToken::ink), 10);
    add(new OVLabel(environment, toQString(viewModel.version()), theme::font::body, ColorToken::ink2), 4);
    add(new OVLabel(environment, toQString(subtitle(SettingsSection::about)), theme::font::body, ColorToken::ink), 14);
    add(update, 22);
    if (!viewModel.isUpdateConfigured()) add(makeWarning(environment), 10);
    this->add(content);
}

}  // namespace ovrin
