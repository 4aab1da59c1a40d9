#include "views/result_panel/result_card.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "base/watch.h"
#include "views/components/blank_answer_note.h"
#include "views/components/busy_note.h"
#include "views/components/ov_animated_icon.h"
#include "views/components/ov_hairline.h"
#include "views/components/ov_label.h"
#include "views/components/ov_streaming_text.h"
#include "views/result_panel/source_toggle.h"
#include "windows/result_panel_view_model.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr double cornerRadius = 14;
constexpr int padding = 16;
constexpr double headerIcon = 14;
const theme::FontStyle headerFont{12, theme::FontWeight::semibold, theme::FontDesign::standard};

}  // namespace

ResultCard::ResultCard(ViewEnvironment& environment, ResultPanelViewModel& viewModel, QWidget* parent)
    : OVSurface(environment, cornerRadius, Elevation::flat, parent),
      viewModel_(viewModel),
      translation_(new OVStreamingText(environment, OVStreamingText::Mode::plain)),
      original_(new OVStreamingText(environment, OVStreamingText::Mode::plain)),
      blank_(makeBlankAnswerNote(environment)),
      nothing_(new OVLabel(environment, QStringLiteral("暂无内容"), theme::font::body, ColorToken::ink3)),
      busy_(new BusyNote(environment, QStringLiteral("正在生成"))),
      divider_(new OVHairline(environment, {.light = 0.08F, .dark = 0.1F})),
      toggle_(new SourceToggle(environment)) {
    translation_->setAccessibleName(QStringLiteral("译文"));
    original_->setAccessibleName(QStringLiteral("识别结果"));
    translation_->setLanguage(viewModel.targetLanguage());
    if (viewModel.sourceLanguage()) original_->setLanguage(*viewModel.sourceLanguage());
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(padding, padding - 3, padding, padding);
    column->setSpacing(10);
    addHeader(*column);
    for (QWidget* const widget : {static_cast<QWidget*>(translation_), static_cast<QWidget*>(blank_),
                                  static_cast<QWidget*>(nothing_), static_cast<QWidget*>(busy_), divider_}) {
        column->addWidget(widget);
    }
    column->addWidget(toggle_);
    column->addWidget(original_);
    bind();
}

void ResultCard::addHeader(QVBoxLayout& column) {
    auto* header = new QHBoxLayout;
    header->setSpacing(7);
    header->addWidget(new OVAnimatedIcon(environment(), OVIcon::scanText, headerIcon, ColorToken::accentInk));
    header->addWidget(new OVLabel(environment(), QStringLiteral("识别结果"), headerFont, ColorToken::ink2));
    header->addStretch();
    column.addLayout(header);
}

void ResultCard::bind() {
    connect(toggle_, &QAbstractButton::toggled, this, [this](bool isChecked) {
        showsOriginal_ = isChecked;
        refresh();
    });
    changes_ = watch(std::tie(viewModel_.originalText(), viewModel_.translation(), viewModel_.isTranslating(),
                              viewModel_.isTranslationBlank()),
                     [this] { refresh(); });
    thinking_ = watch(viewModel_.translationThinking(), [this](const std::string& words) { busy_->setDetail(words); });
}

void ResultCard::refresh() {
    using Progress = OVStreamingText::Progress;
    const std::string& translation = viewModel_.translation().value();
    const std::string& original = viewModel_.originalText().value();
    const bool isTranslating = viewModel_.isTranslating().value();
    const bool isBlank = viewModel_.isTranslationBlank().value();
    const bool isTranslated = isTranslating || isBlank || !translation.empty();
    const bool hasSource = isTranslated && !original.empty();

    translation_->setTextSoFar(translation, isTranslating ? Progress::streaming : Progress::finished);
    original_->setTextSoFar(original, Progress::finished);
    original_->setColor(isTranslated ? ColorToken::ink2 : ColorToken::ink);
    translation_->setVisible(!translation.empty() && !isBlank);
    blank_->setVisible(isBlank);
    busy_->setVisible(isTranslating);
    nothing_->setVisible(!isTranslated && original.empty());
    divider_->setVisible(hasSource);
    toggle_->setVisible(hasSource);
    original_->setVisible(!original.empty() && (!isTranslated || showsOriginal_));
}

}  // namespace ovrin
