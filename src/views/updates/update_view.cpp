#include "views/updates/update_view.h"

#include <QHBoxLayout>
#include <QStackedLayout>
#include <QVBoxLayout>

#include "base/watch.h"
#include "views/components/drawing.h"
#include "views/components/ov_brand_mark.h"
#include "views/components/ov_error_note.h"
#include "views/components/ov_label.h"
#include "views/components/ov_pixel_loader.h"
#include "views/components/ov_progress_bar.h"
#include "views/components/ov_scroll_area.h"
#include "views/components/ov_streaming_text.h"
#include "views/components/ov_surface.h"
#include "views/components/reading_column.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr int padding = 24;
constexpr double cardRadius = 12;
constexpr double briefMarkSize = 64;
// Points: what is below or above the words stays where it is, whatever they say.
constexpr int briefWordsHeight = 104;  // a title and an error of two lines
constexpr int offerWordsHeight = 62;   // a title, a line and the progress
constexpr double offerMarkSize = 44;

bool isBusy(UpdatePhase phase) {
    return phase == UpdatePhase::checking || phase == UpdatePhase::verifying || phase == UpdatePhase::handingOver;
}

}  // namespace

UpdateView::UpdateView(ViewEnvironment& environment, UpdateViewModel& viewModel,
                       const Published<std::string>& brandImage, int topSpace, QWidget* parent)
    : OVWidget(environment, parent), viewModel_(viewModel), topSpace_(topSpace), faces_(new QStackedLayout) {
    faces_->addWidget(makeBriefFace(brandImage));
    faces_->addWidget(makeOfferFace(brandImage));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(padding, 0, padding, padding - 4);
    column->setSpacing(16);
    column->addLayout(faces_, 1);
    column->addLayout(makeButtons());
    changes_ = watch(viewModel_.status(), [this](const auto& /*status*/) { refresh(); });
}

UpdateView::Words UpdateView::makeWords() {
    return {.title = new OVLabel(environment(), {}, theme::font::title, ColorToken::ink, OVLabel::Lines::wrapped),
            .message = new OVLabel(environment(), {}, theme::font::body, ColorToken::ink2, OVLabel::Lines::wrapped),
            .error = new OVErrorNote(environment()),
            .loader = new OVPixelLoader(environment(), ColorToken::accentInk)};
}

QWidget* UpdateView::makeBriefFace(const Published<std::string>& brandImage) {
    auto* face = new QWidget;
    auto* column = new QVBoxLayout(face);
    column->setContentsMargins(0, topSpace_, 0, 0);
    column->setSpacing(0);
    brief_ = makeWords();
    brief_.title->setAlignment(Qt::AlignCenter);
    brief_.message->setAlignment(Qt::AlignCenter);
    auto* words = new QWidget;
    words->setMinimumHeight(briefWordsHeight);
    auto* lines = new QVBoxLayout(words);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(8);
    lines->addWidget(brief_.title);
    lines->addWidget(brief_.message);
    lines->addWidget(brief_.error);
    lines->addWidget(brief_.loader, 0, Qt::AlignHCenter);
    lines->addStretch();
    column->addStretch();
    column->addWidget(new OVBrandMark(environment(), briefMarkSize, brandImage), 0, Qt::AlignHCenter);
    column->addSpacing(16);
    column->addWidget(words);
    column->addStretch();
    return face;
}

QWidget* UpdateView::makeOfferFace(const Published<std::string>& brandImage) {
    auto* face = new QWidget;
    auto* column = new QVBoxLayout(face);
    column->setContentsMargins(0, topSpace_ - 4, 0, 0);
    column->setSpacing(14);
    offer_ = makeWords();
    progress_ = new OVProgressBar(environment(), QStringLiteral("下载进度"));
    auto* row = new QHBoxLayout;
    row->setSpacing(14);
    row->addWidget(new OVBrandMark(environment(), offerMarkSize, brandImage), 0, Qt::AlignTop);
    auto* words = new QWidget;
    words->setMinimumHeight(offerWordsHeight);
    auto* lines = new QVBoxLayout(words);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(4);
    lines->addWidget(offer_.title);
    lines->addWidget(offer_.message);
    lines->addWidget(progress_);
    lines->addStretch();
    row->addWidget(words, 1);
    row->addWidget(offer_.loader, 0, Qt::AlignTop);
    column->addLayout(row);
    column->addWidget(makeNotes(), 1);
    column->addWidget(offer_.error);
    return face;
}

QWidget* UpdateView::makeNotes() {
    auto* card = new OVSurface(environment(), cardRadius, OVSurface::Elevation::flat);
    auto* column = new QVBoxLayout(card);
    column->setContentsMargins(0, 12, 0, 8);
    column->setSpacing(8);
    auto* heading = new QHBoxLayout;
    heading->setContentsMargins(16, 0, 16, 0);
    heading->addWidget(new OVLabel(environment(), QStringLiteral("更新内容"), theme::font::headline, ColorToken::ink),
                       1);
    details_ = new OVLabel(environment(), {}, theme::font::caption, ColorToken::ink2);
    heading->addWidget(details_);
    column->addLayout(heading);
    auto* area = new OVScrollArea(environment());
    auto* text = new ReadingColumn(environment(), *area);
    notes_ = new OVStreamingText(environment(), OVStreamingText::Mode::markdown);
    text->makeReadable(*notes_);
    text->column().addWidget(notes_);
    noNotes_ = new OVLabel(environment(), QStringLiteral("此版本没有更新说明。"), theme::font::body, ColorToken::ink2);
    text->column().addWidget(noNotes_);
    area->setContent(text);
    column->addWidget(area, 1);
    return card;
}

OVButton* UpdateView::addButton(QBoxLayout& row, const QString& text, OVButton::Kind kind, void (UpdateView::*act)()) {
    auto* button = new OVButton(environment(), text, kind);
    connect(button, &QAbstractButton::clicked, this, act);
    row.addWidget(button);
    return button;
}

QBoxLayout* UpdateView::makeButtons() {
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    skip_ = addButton(*row, QStringLiteral("跳过此版本"), OVButton::Kind::ghost, &UpdateView::skip);
    row->addStretch();
    later_ = addButton(*row, QStringLiteral("稍后"), OVButton::Kind::secondary, &UpdateView::closeRequested);
    close_ = addButton(*row, QStringLiteral("好"), OVButton::Kind::secondary, &UpdateView::closeRequested);
    cancel_ = addButton(*row, QStringLiteral("取消"), OVButton::Kind::secondary, &UpdateView::cancel);
    retry_ = addButton(*row, QStringLiteral("重试"), OVButton::Kind::primary, &UpdateView::retry);
    page_ = addButton(*row, QStringLiteral("打开下载页面"), OVButton::Kind::primary, &UpdateView::openPage);
    install_ = addButton(*row, QStringLiteral("安装"), OVButton::Kind::primary, &UpdateView::install);
    return row;
}

void UpdateView::skip() {
    viewModel_.skipVersion();
    emit closeRequested();
}

void UpdateView::refresh() {
    const UpdateViewModel::Status& status = viewModel_.status().value();
    refreshWords(brief_, status);
    refreshWords(offer_, status);
    if (viewModel_.update()) refreshOffer(status);
    faces_->setCurrentIndex(viewModel_.update() ? 1 : 0);
    refreshButtons(status.phase);
}

void UpdateView::refreshWords(const Words& words, const UpdateViewModel::Status& status) {
    const bool isFailure = status.phase == UpdatePhase::failed;
    words.title->setText(toQString(status.title));
    words.message->setText(isFailure ? QString() : toQString(status.message));
    words.message->setVisible(!isFailure && !status.message.empty());
    words.error->setMessage(isFailure ? std::optional(status.message) : std::nullopt);
    words.loader->setVisible(isBusy(status.phase));
}

void UpdateView::refreshOffer(const UpdateViewModel::Status& status) {
    const UpdateItem& item = *viewModel_.update();
    details_->setText(toQString(viewModel_.updateDetails()));
    notes_->setTextSoFar(item.notes, OVStreamingText::Progress::finished);
    notes_->setVisible(!item.notes.empty());
    noNotes_->setVisible(item.notes.empty());
    progress_->setVisible(status.phase == UpdatePhase::downloading);
    progress_->setValue(
        static_cast<int>(status.received * static_cast<std::uint64_t>(progress_->maximum()) / item.packageSize));
}

void UpdateView::refreshButtons(UpdatePhase phase) {
    const QWidget* const focused = focusWidget();
    const bool isOnOffer = phase == UpdatePhase::available;
    const bool isDownloading = phase == UpdatePhase::downloading || phase == UpdatePhase::verifying;
    skip_->setVisible(isOnOffer);
    later_->setVisible(isOnOffer);
    install_->setVisible(isOnOffer && viewModel_.canInstall());
    page_->setVisible(isOnOffer && !viewModel_.canInstall() && viewModel_.hasPage());
    cancel_->setVisible(isDownloading);
    retry_->setVisible(phase == UpdatePhase::failed);
    close_->setVisible(!isOnOffer && !isDownloading);
    close_->setText(phase == UpdatePhase::checking ? QStringLiteral("取消") : QStringLiteral("好"));
    // The keyboard does not wander off with a button that goes.
    if (focused != nullptr && !focused->isVisibleTo(this)) mainButton(phase)->setFocus();
}

OVButton* UpdateView::mainButton(UpdatePhase phase) const {
    switch (phase) {
        case UpdatePhase::available:
            if (viewModel_.canInstall()) return install_;
            return viewModel_.hasPage() ? page_ : later_;
        case UpdatePhase::downloading:
        case UpdatePhase::verifying:
            return cancel_;
        case UpdatePhase::failed:
            return retry_;
        default:
            return close_;
    }
}

}  // namespace ovrin
