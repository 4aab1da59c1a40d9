#include "views/result_panel/result_panel_title_bar.h"

#include <QHBoxLayout>

#include "base/watch.h"
#include "language/language_names.h"
#include "views/components/drawing.h"
#include "views/components/ov_brand_mark.h"
#include "views/components/ov_button.h"
#include "views/components/ov_label.h"
#include "views/components/ov_status_pill.h"
#include "windows/result_panel_view_model.h"

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr int barHeight = 48;
constexpr double markSize = 20;
constexpr int longestLanguageName = 110;  // points
const theme::FontStyle nameFont{13, theme::FontWeight::semibold, theme::FontDesign::standard};
}  // namespace

ResultPanelTitleBar::ResultPanelTitleBar(ViewEnvironment& environment, ResultPanelViewModel& viewModel,
                                         const Published<std::string>& brandImage, QWidget* parent)
    : OVWidget(environment, parent), viewModel_(viewModel) {
    setFixedHeight(barHeight);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(16, 0, 10, 0);
    row->setSpacing(2);
    addBrand(*row, brandImage);
    row->addStretch();
    addActions(*row);
    changes_ = watch(std::tie(viewModel.isTranslating(), viewModel.translation(), viewModel.showsImageOverlay()),
                     [this] { refresh(); });
}

void ResultPanelTitleBar::addBrand(QHBoxLayout& row, const Published<std::string>& brandImage) {
    const auto& language = viewModel_.sourceLanguage();
    const QString name = language ? toQString(displayLanguageName(*language)) : QStringLiteral("自动识别");
    const QFontMetrics metrics(toQFont(theme::font::caption));
    auto* pill = new OVStatusPill(environment(), metrics.elidedText(name, Qt::ElideRight, longestLanguageName),
                                  OVStatusPill::Kind::neutral);
    pill->setToolTip(name);
    row.addWidget(new OVBrandMark(environment(), markSize, brandImage));
    row.addSpacing(7);
    row.addWidget(new OVLabel(environment(), QStringLiteral("Ovrin"), nameFont, ColorToken::ink));
    row.addSpacing(8);
    row.addWidget(pill);
}

void ResultPanelTitleBar::addActions(QHBoxLayout& row) {
    translate_ =
        new OVButton(environment(), QStringLiteral("翻译"), OVButton::Kind::primary, OVButton::Density::compact);
    translate_->setOVIcon(OVIcon::languages);
    auto* copy = new OVIconButton(environment(), OVIcon::copy, QStringLiteral("复制"));
    auto* speak = new OVIconButton(environment(), OVIcon::volume, QStringLiteral("朗读"));
    overlay_ = new OVIconButton(environment(), OVIcon::image, QStringLiteral("原图翻译"));
    auto* close = new OVIconButton(environment(), OVIcon::close, QStringLiteral("关闭"));
    row.addWidget(translate_);
    row.addSpacing(6);
    for (QWidget* const button : {overlay_, copy, speak, close}) row.addWidget(button);

    connect(translate_, &QAbstractButton::clicked, this, [this] { viewModel_.translate(); });
    connect(copy, &QAbstractButton::clicked, this, [this] { viewModel_.copyPrimaryText(); });
    connect(speak, &QAbstractButton::clicked, this, [this] { viewModel_.speakPrimaryText(); });
    connect(overlay_, &QAbstractButton::clicked, this,
            [this] { viewModel_.setShowsImageOverlay(!viewModel_.showsImageOverlay().value()); });
    connect(close, &QAbstractButton::clicked, this, &ResultPanelTitleBar::closeRequested);
}

void ResultPanelTitleBar::refresh() {
    const bool isTranslating = viewModel_.isTranslating().value();
    translate_->setText(isTranslating ? QStringLiteral("正在翻译") : QStringLiteral("翻译"));
    translate_->setEnabled(!isTranslating);
    translate_->updateGeometry();
    const bool showsOverlay = viewModel_.showsImageOverlay().value();
    overlay_->setVisible(viewModel_.canShowOverlay());
    overlay_->setOVIcon(showsOverlay ? OVIcon::alignLeft : OVIcon::image);
    overlay_->setLabel(showsOverlay ? QStringLiteral("返回文本") : QStringLiteral("原图翻译"));
}

}  // namespace ovrin
