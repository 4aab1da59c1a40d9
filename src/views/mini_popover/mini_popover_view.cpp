#include "views/mini_popover/mini_popover_view.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "base/watch.h"
#include "views/components/blank_answer_note.h"
#include "views/components/busy_note.h"
#include "views/components/drawing.h"
#include "views/components/ov_brand_mark.h"
#include "views/components/ov_button.h"
#include "views/components/ov_error_note.h"
#include "views/components/ov_label.h"
#include "views/components/ov_scroll_area.h"
#include "views/components/ov_status_pill.h"
#include "views/components/ov_streaming_text.h"
#include "windows/mini_popover_view_model.h"

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr double markSize = 20;
constexpr int padding = 14;
}  // namespace

MiniPopoverView::MiniPopoverView(ViewEnvironment& environment, MiniPopoverViewModel& viewModel,
                                 const Published<std::string>& brandImage, QWidget* parent)
    : OVWidget(environment, parent),
      viewModel_(viewModel),
      pill_(new OVStatusPill(environment, QStringLiteral("生成中"), OVStatusPill::Kind::active)),
      waiting_(new BusyNote(environment, QStringLiteral("正在理解并翻译…"))),
      area_(new OVScrollArea(environment)),
      text_(new OVStreamingText(environment, OVStreamingText::Mode::plain)),
      blank_(makeBlankAnswerNote(environment)),
      error_(new OVErrorNote(environment)),
      copy_(new OVButton(environment, QStringLiteral("复制"), OVButton::Kind::secondary, OVButton::Density::compact)) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 10, 0, 12);
    column->setSpacing(8);
    column->addWidget(makeHeader(brandImage));
    column->addWidget(makeBody(), 1);
    column->addWidget(makeFooter());
    text_->setAccessibleName(QStringLiteral("译文"));
    text_->setLanguage(viewModel.targetLanguage());
    bind();
}

QWidget* MiniPopoverView::makeHeader(const Published<std::string>& brandImage) {
    auto* header = new QWidget;
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(padding, 0, padding - 6, 0);
    row->setSpacing(8);
    row->addWidget(new OVBrandMark(environment(), markSize, brandImage));
    row->addWidget(new OVLabel(environment(), QStringLiteral("即时翻译"), theme::font::headline, ColorToken::ink));
    row->addWidget(
        new OVLabel(environment(), toQString(viewModel_.targetLanguageName()), theme::font::caption, ColorToken::ink3),
        1);
    row->addWidget(pill_);
    auto* close = new OVIconButton(environment(), OVIcon::close, QStringLiteral("关闭"));
    connect(close, &QAbstractButton::clicked, this, &MiniPopoverView::closeRequested);
    row->addWidget(close);
    return header;
}

QWidget* MiniPopoverView::makeBody() {
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(padding, 0, padding, 0);
    column->setSpacing(8);
    waiting_->setContentsMargins(0, 2, 0, 0);
    column->addWidget(waiting_);
    column->addWidget(text_);
    column->addWidget(blank_);
    column->addWidget(error_);
    column->addStretch();
    area_->setContent(content);
    area_->keepInSight(*text_);
    return area_;
}

QWidget* MiniPopoverView::makeFooter() {
    auto* footer = new QWidget;
    auto* row = new QHBoxLayout(footer);
    row->setContentsMargins(padding, 0, padding - 2, 0);
    row->addStretch();
    copy_->setOVIcon(OVIcon::copy);
    connect(copy_, &QAbstractButton::clicked, this, [this] { viewModel_.copyTranslation(); });
    row->addWidget(copy_);
    return footer;
}

void MiniPopoverView::bind() {
    changes_ = watch(
        std::tie(viewModel_.translation(), viewModel_.isStreaming(), viewModel_.isBlank(), viewModel_.errorMessage()),
        [this] { refresh(); });
    thinking_ = watch(viewModel_.thinking(), [this](const std::string& words) { waiting_->setDetail(words); });
    newError_ = viewModel_.errorMessage().onDidChange([this](const auto& message) {
        // The translation is read from its beginning while it comes; what ended it stands below.
        if (message) area_->reveal(*error_);
    });
}

void MiniPopoverView::refresh() {
    const std::string& translation = viewModel_.translation().value();
    const bool isStreaming = viewModel_.isStreaming().value();
    pill_->setVisible(isStreaming);
    waiting_->setVisible(isStreaming && translation.empty());
    const bool isBlank = viewModel_.isBlank().value();
    text_->setVisible(!translation.empty() && !isBlank);
    blank_->setVisible(isBlank);
    text_->setTextSoFar(translation,
                        isStreaming ? OVStreamingText::Progress::streaming : OVStreamingText::Progress::finished);
    error_->setMessage(viewModel_.errorMessage().value());
    copy_->setEnabled(!translation.empty() && !isBlank);
}

void MiniPopoverView::showEvent(QShowEvent* /*event*/) {
    viewModel_.start();
}

}  // namespace ovrin
