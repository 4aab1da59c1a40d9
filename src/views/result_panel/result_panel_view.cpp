#include "views/result_panel/result_panel_view.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QVBoxLayout>

#include "base/watch.h"
#include "views/components/ov_scroll_area.h"
#include "views/result_panel/image_overlay_view.h"
#include "views/result_panel/reading_flow.h"
#include "views/result_panel/result_panel_composer.h"
#include "views/result_panel/result_panel_title_bar.h"

namespace ovrin {

ResultPanelView::ResultPanelView(ViewEnvironment& environment, ResultPanelViewModel& viewModel,
                                 const Published<std::string>& brandImage)
    : OVWidget(environment),
      viewModel_(viewModel),
      reading_(new OVScrollArea(environment)),
      composer_(new ResultPanelComposer(environment, viewModel)),
      column_(new QVBoxLayout(this)) {
    auto* titleBar = new ResultPanelTitleBar(environment, viewModel, brandImage);
    reading_->setContent(new ReadingFlow(environment, viewModel, *reading_));
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(0);
    column_->addWidget(titleBar);
    column_->addWidget(reading_, 1);
    column_->addWidget(composer_);

    connect(titleBar, &ResultPanelTitleBar::closeRequested, this, &ResultPanelView::closeRequested);
    connect(composer_, &ResultPanelComposer::scrollKeyPressed, this,
            [this](QKeyEvent* event) { QCoreApplication::sendEvent(reading_, event); });
    followNews();
    showing_ =
        watch(std::tie(viewModel.showsImageOverlay(), viewModel.translation()), [this] { showReadingOrOverlay(); });
}

// What was asked for last is what the user wants to see, whichever way that was: an answer at the end of the
// conversation as it comes, or the translation above it, which is read from its beginning.
void ResultPanelView::followNews() {
    translating_ = viewModel_.isTranslating().onDidChange([this](bool isTranslating) {
        if (isTranslating) reading_->showTop();
    });
    streaming_ = viewModel_.isAIStreaming().onDidChange([this](bool isStreaming) {
        if (isStreaming) reading_->followBottom();
    });
    connect(composer_, &ResultPanelComposer::submitted, reading_, &OVScrollArea::followBottom);
    if (viewModel_.hasConversation()) reading_->followBottom();
}

void ResultPanelView::showReadingOrOverlay() {
    const bool showsOverlay = viewModel_.showsImageOverlay().value() && viewModel_.canShowOverlay();
    if (showsOverlay && overlay_ == nullptr) {
        overlay_ = new ImageOverlayView(environment(), *viewModel_.sourceImage(), viewModel_.ocrResult()->paragraphs,
                                        viewModel_.targetLanguage());
        column_->insertWidget(column_->indexOf(reading_), overlay_, 1);
    }
    reading_->setVisible(!showsOverlay);
    if (overlay_ == nullptr) return;
    overlay_->setVisible(showsOverlay);
    overlay_->setTranslatedText(viewModel_.translation().value());
}

void ResultPanelView::focusComposer() {
    composer_->focusField();
}

}  // namespace ovrin
