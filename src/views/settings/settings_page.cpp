#include "views/settings/settings_page.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QPainter>
#include <QScrollBar>
#include <QVBoxLayout>

#include "views/components/ov_label.h"
#include "views/components/ov_scroll_area.h"

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr int sideMargin = 28;
constexpr int topMargin = 24;
constexpr int bottomMargin = 20;  // below the cards
constexpr int headGap = 16;       // between the head and the cards
constexpr int cardGap = 20;       // between cards
constexpr int barMargin = 14;
constexpr int noteGap = 12;
constexpr int buttonGap = 8;
}  // namespace

SettingsPage::SettingsPage(ViewEnvironment& environment, const QString& title, const QString& subtitle, Content content,
                           QWidget* parent)
    : OVWidget(environment, parent),
      column_(new QVBoxLayout(this)),
      scrollArea_(new OVScrollArea(environment)),
      cards_(new QVBoxLayout) {
    setAccessibleName(title);
    auto* head = new QVBoxLayout;
    head->setContentsMargins(sideMargin, topMargin, sideMargin, headGap);
    head->setSpacing(4);
    head->addWidget(new OVLabel(environment, title, theme::font::title, ColorToken::ink));
    head->addWidget(new OVLabel(environment, subtitle, theme::font::body, ColorToken::ink2, OVLabel::Lines::wrapped));

    auto* sheet = new QWidget;
    auto* sheetColumn = new QVBoxLayout(sheet);
    sheetColumn->setContentsMargins(sideMargin, 0, sideMargin, bottomMargin);
    sheetColumn->setSpacing(0);
    cards_->setSpacing(cardGap);
    if (content == Content::centred) sheetColumn->addStretch(2);
    sheetColumn->addLayout(cards_);
    sheetColumn->addStretch(3);
    scrollArea_->setContent(sheet);

    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(0);
    column_->addLayout(head);
    column_->addWidget(scrollArea_, 1);
    // Where the cards go on beyond an edge, a line says so.
    const QScrollBar* const scrollBar = scrollArea_->verticalScrollBar();
    connect(scrollBar, &QScrollBar::valueChanged, this, qOverload<>(&QWidget::update));
    connect(scrollBar, &QScrollBar::rangeChanged, this, qOverload<>(&QWidget::update));
    // The toolkit only scrolls to what Tab comes to from within. A window that the keyboard comes back to stays as it
    // was.
    connect(qApp, &QApplication::focusChanged, this, [this, sheet](const QWidget* before, QWidget* now) {
        const bool isWithinWindow = before != nullptr && now != nullptr && before->window() == now->window();
        if (isWithinWindow && sheet->isAncestorOf(now)) scrollArea_->reveal(*now);
    });
}

void SettingsPage::paintEvent(QPaintEvent* /*event*/) {
    const QScrollBar* const scrollBar = scrollArea_->verticalScrollBar();
    const QRect area = scrollArea_->geometry();
    QPainter painter(this);
    QColor line = color(ColorToken::ink);
    line.setAlphaF(environment().isDark() ? 0.10F : 0.08F);
    const auto drawLine = [&](int y) { painter.fillRect(area.left(), y, area.width(), 1, line); };
    if (scrollBar->value() > scrollBar->minimum()) drawLine(area.top() - 1);
    if (scrollBar->value() < scrollBar->maximum()) drawLine(area.bottom() + 1);
}

void SettingsPage::add(QWidget* card) {
    cards_->addWidget(card);
}

QVBoxLayout& SettingsPage::bottom() {
    if (bottom_ == nullptr) {
        bottom_ = new QVBoxLayout;
        bottom_->setContentsMargins(sideMargin, barMargin, sideMargin, barMargin + 4);
        bottom_->setSpacing(noteGap);
        column_->addLayout(bottom_);
    }
    return *bottom_;
}

void SettingsPage::addAboveBar(QWidget* note) {
    bottom().insertWidget(0, note);
}

QHBoxLayout& SettingsPage::bar() {
    if (bar_ == nullptr) {
        bar_ = new QHBoxLayout;
        bar_->setContentsMargins(0, 0, 0, 0);
        bar_->setSpacing(buttonGap);
        bottom().addLayout(bar_);
    }
    return *bar_;
}

}  // namespace ovrin
