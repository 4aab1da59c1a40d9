#include "views/history/history_view.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QShortcut>
#include <QStackedLayout>
#include <QVBoxLayout>

#include "base/watch.h"
#include "views/components/drawing.h"
#include "views/components/ov_alert.h"
#include "views/components/ov_animated_icon.h"
#include "views/components/ov_brand_mark.h"
#include "views/components/ov_button.h"
#include "views/components/ov_choice_bar.h"
#include "views/components/ov_label.h"
#include "views/components/ov_scroll_area.h"
#include "views/components/ov_text_field.h"
#include "views/components/ov_title_bar.h"
#include "views/components/sliding_exchange.h"
#include "views/history/history_list.h"
#include "windows/history_view_model.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr int margin = 20;
constexpr int searchWidth = 220;
constexpr double brandSize = 22;
constexpr double emptyIconSize = 30;

std::vector<OVChoiceBar::Choice> filterChoices() {
    std::vector<OVChoiceBar::Choice> choices;
    choices.reserve(historyFilters.size());
    for (const HistoryFilter filter : historyFilters) choices.push_back({toQString(label(filter))});
    return choices;
}

}  // namespace

HistoryView::HistoryView(ViewEnvironment& environment, HistoryViewModel& viewModel,
                         const Published<std::string>& brandImage)
    : OVWidget(environment),
      viewModel_(viewModel),
      search_(new OVTextField(environment, QStringLiteral("搜索原文或结果…"))),
      deleteAll_(new OVButton(environment, QStringLiteral("清除全部"), OVButton::Kind::secondary)),
      filters_(new OVChoiceBar(environment, {}, filterChoices(), OVChoiceBar::Look::filters)),
      content_(new QWidget),
      pages_(new QStackedLayout(content_)) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeTitle(brandImage));
    column->addWidget(makeControls());
    column->addWidget(content_, 1);
    auto* area = new OVScrollArea(environment);
    list_ = new HistoryList(environment, viewModel, *area);
    pages_->addWidget(area);
    pages_->addWidget(makeEmptyState());
    exchange_ = new SlidingExchange(environment, *content_);
    addShortcuts();
    bind();
}

// It lies below the title bar of the window, which takes the pointer there.
QWidget* HistoryView::makeTitle(const Published<std::string>& brandImage) {
    auto* title = new QWidget;
    title->setFixedHeight(OVTitleBar::barHeight);
    auto* row = new QHBoxLayout(title);
    row->setContentsMargins(margin, 6, OVTitleBar::buttonsWidth, 0);
    row->setSpacing(10);
    row->addWidget(new OVBrandMark(environment(), brandSize, brandImage));
    row->addWidget(new OVLabel(environment(), QStringLiteral("历史记录"), theme::font::title, ColorToken::ink));
    row->addStretch();
    return title;
}

QWidget* HistoryView::makeControls() {
    search_->setLeadingIcon(OVIcon::search);
    search_->setFixedWidth(searchWidth);
    search_->setAccessibleName(QStringLiteral("搜索历史记录"));
    search_->setText(toQString(viewModel_.searchText().value()));
    search_->installEventFilter(this);
    deleteAll_->setOVIcon(OVIcon::trash);
    auto* controls = new QWidget;
    auto* row = new QHBoxLayout(controls);
    row->setContentsMargins(margin, 6, margin, 8);
    row->setSpacing(8);
    row->addWidget(filters_);
    row->addStretch();
    row->addWidget(search_);
    row->addWidget(deleteAll_);
    return controls;
}

QWidget* HistoryView::makeEmptyState() {
    emptyIcon_ = new OVAnimatedIcon(environment(), OVIcon::history, emptyIconSize, ColorToken::ink3);
    emptyHeadline_ = new OVLabel(environment(), {}, theme::font::headline, ColorToken::ink);
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(margin, 0, margin, OVTitleBar::barHeight);
    column->setSpacing(6);
    column->addStretch();
    column->addWidget(emptyIcon_, 0, Qt::AlignHCenter);
    column->addSpacing(6);
    column->addWidget(emptyHeadline_, 0, Qt::AlignHCenter);
    column->addWidget(new OVLabel(environment(), QStringLiteral("OCR 与翻译结果会自动保存在这里"), theme::font::body,
                                  ColorToken::ink2),
                      0, Qt::AlignHCenter);
    column->addStretch();
    return page;
}

void HistoryView::addShortcuts() {
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, &HistoryView::focusSearch);
}

void HistoryView::bind() {
    connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) {
        list_->scrollToTop();
        viewModel_.setSearchText(text.toStdString());
    });
    connect(filters_, &OVChoiceBar::chosen, this,
            [this](int index) { viewModel_.selectFilter(historyFilters.at(static_cast<std::size_t>(index))); });
    connect(deleteAll_, &QAbstractButton::clicked, this, [this] { viewModel_.askToDeleteAll(); });
    connect(list_, &HistoryList::keyboardLost, this, &HistoryView::focusSearch);
    // The view still shows what passed the filter before.
    subscriptions_.push_back(viewModel_.selectedType().onDidChange([this](HistoryFilter /*filter*/) {
        exchange_->begin(viewModel_.movesForward() ? SlidingExchange::Direction::forward
                                                   : SlidingExchange::Direction::backward);
        list_->scrollToTop();
    }));
    subscriptions_.push_back(
        watch(std::tie(viewModel_.filtered(), viewModel_.searchText()), [this] { showListOrEmptyState(); }));
    subscriptions_.push_back(
        watch(viewModel_.canDeleteAll(), [this](bool canDelete) { deleteAll_->setEnabled(canDelete); }));
    subscriptions_.push_back(
        watch(viewModel_.confirmsDeleteAll(), [this](bool isWanted) { showConfirmation(isWanted); }));
}

void HistoryView::showListOrEmptyState() {
    emptyHeadline_->setText(toQString(viewModel_.emptyHeadline()));
    emptyIcon_->setIcon(viewModel_.searchText()->empty() ? OVIcon::history : OVIcon::search);
    pages_->setCurrentIndex(viewModel_.filtered()->empty() ? 1 : 0);
}

void HistoryView::showConfirmation(bool isWanted) {
    if (!isWanted || confirmation_) return;
    confirmation_ = new OVAlert(environment(),
                                {.message = QStringLiteral("清除全部历史记录？"),
                                 .informativeText = QStringLiteral("此操作无法撤销。"),
                                 .dismissButton = QStringLiteral("取消")},
                                *this);
    confirmation_->addChoice(
        QStringLiteral("清除"), [this] { viewModel_.deleteAll(); }, OVAlert::Choice::destructive);
    connect(confirmation_, &OVAlert::dismissed, this, [this] { viewModel_.cancelDeleteAll(); });
    confirmation_->present();
}

void HistoryView::focusSearch() {
    search_->setFocus(Qt::ShortcutFocusReason);
    search_->selectAll();
}

// In the search field the arrow leads to the records, and Escape clears what was typed.
bool HistoryView::eventFilter(QObject* watched, QEvent* event) {
    if (watched != search_ || event->type() != QEvent::KeyPress) return OVWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();  // NOLINT: its type says so
    if (key == Qt::Key_Down) {
        list_->focusRow();
        return true;
    }
    if (key == Qt::Key_Escape && !search_->text().isEmpty()) {
        search_->clear();
        return true;
    }
    return OVWidget::eventFilter(watched, event);
}

}  // namespace ovrin
