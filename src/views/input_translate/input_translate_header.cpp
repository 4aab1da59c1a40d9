#include "views/input_translate/input_translate_header.h"

#include <QHBoxLayout>

#include "base/watch.h"
#include "language/language_names.h"
#include "storage/app_config.h"
#include "views/components/drawing.h"
#include "views/components/ov_brand_mark.h"
#include "views/components/ov_button.h"
#include "views/components/ov_label.h"
#include "views/components/ov_picker.h"
#include "views/components/ov_status_pill.h"
#include "windows/input_translate_view_model.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr int headerHeight = 48;
constexpr double markSize = 20;

std::vector<OVPicker::Option> targetOptions() {
    std::vector<OVPicker::Option> options;
    for (const auto& [tag, name] : AppConfig::languageOptions) options.push_back({toQString(tag), toQString(name)});
    return options;
}

}  // namespace

InputTranslateHeader::InputTranslateHeader(ViewEnvironment& environment, InputTranslateViewModel& viewModel,
                                           const Published<std::string>& brandImage, QWidget* parent)
    : OVWidget(environment, parent),
      viewModel_(viewModel),
      detected_(new OVStatusPill(environment, {}, OVStatusPill::Kind::neutral)),
      target_(new OVPicker(environment, QStringLiteral("目标语言"), targetOptions())),
      swap_(new OVIconButton(environment, OVIcon::arrowLeftRight, QStringLiteral("交换语言"))) {
    setFixedHeight(headerHeight);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(16, 0, 10, 0);
    row->setSpacing(2);
    addBrand(*row, brandImage);
    row->addStretch();
    addControls(*row);
    bind();
}

void InputTranslateHeader::addBrand(QHBoxLayout& row, const Published<std::string>& brandImage) {
    row.addWidget(new OVBrandMark(environment(), markSize, brandImage));
    row.addSpacing(7);
    row.addWidget(new OVLabel(environment(), QStringLiteral("翻译"), theme::font::headline, ColorToken::ink));
    row.addSpacing(8);
    row.addWidget(detected_);
}

void InputTranslateHeader::addControls(QHBoxLayout& row) {
    auto* close = new OVIconButton(environment(), OVIcon::close, QStringLiteral("关闭"));
    row.addWidget(target_);
    row.addSpacing(4);
    row.addWidget(swap_);
    row.addWidget(close);
    connect(close, &QAbstractButton::clicked, this, &InputTranslateHeader::closeRequested);
}

void InputTranslateHeader::bind() {
    connect(target_, &OVPicker::picked, this,
            [this](const QString& tag) { viewModel_.setTargetLanguage(tag.toStdString()); });
    connect(swap_, &QAbstractButton::clicked, this, [this] { viewModel_.swapLanguages(); });
    changes_ = watch(std::tie(viewModel_.detectedLanguage(), viewModel_.targetLanguage(), viewModel_.outputText()),
                     [this] { refresh(); });
}

void InputTranslateHeader::refresh() {
    const std::optional<std::string>& detected = viewModel_.detectedLanguage().value();
    detected_->setVisible(detected.has_value());
    if (detected) detected_->set(toQString(englishLanguageName(*detected)), OVStatusPill::Kind::neutral);
    const std::string& target = viewModel_.targetLanguage().value();
    target_->setCurrent(
        {.value = toQString(AppConfig::normalizeLanguageTag(target)), .title = toQString(displayLanguageName(target))});
    swap_->setEnabled(!viewModel_.outputText()->empty());
}

}  // namespace ovrin
