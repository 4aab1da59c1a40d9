#include "views/command_palette/command_palette_view.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>
#include <array>
#include <utility>

#include "platform/linux/qt/input_focus_watch.h"
#include "platform/linux/qt/qt_screens.h"
#include "views/command_palette/command_list.h"
#include "views/components/ov_button.h"
#include "views/components/ov_scroll_area.h"
#include "views/components/ov_text_field.h"

namespace ovrin {

namespace {
constexpr QSize paletteSize{520, 460};
constexpr double cornerRadius = 14;
constexpr int headerHeight = 54;
const theme::FontStyle queryFont{15, theme::FontWeight::medium, theme::FontDesign::standard};
}  // namespace

CommandPaletteView::CommandPaletteView(ViewEnvironment& environment, CommandPaletteViewModel& viewModel,
                                       std::function<void()> requestClose)
    : OVFloatingWindow(environment, cornerRadius, WindowRole::palette),
      viewModel_(viewModel),
      requestClose_(std::move(requestClose)),
      field_(new OVTextField(environment, QStringLiteral("搜索命令…"))),
      area_(new OVScrollArea(environment)),
      list_(new CommandList(environment, viewModel)) {
    setWindowTitle(QStringLiteral("命令面板"));
    setFrameSize(paletteSize);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeHeader());
    auto* line = new QWidget;
    line->setFixedHeight(1);
    line->setAutoFillBackground(true);
    const auto tint = [this, line] {
        QColor shade = color(theme::ColorToken::ink);
        shade.setAlphaF(0.09F);
        QPalette colors;
        colors.setColor(QPalette::Window, shade);
        line->setPalette(colors);
    };
    connect(&environment, &ViewEnvironment::changed, line, tint);
    tint();
    column->addWidget(line);
    area_->setContent(list_);
    column->addWidget(area_, 1);
    // The last row keeps its distance from the rounded corners.
    column->addSpacing(2);
    connect(new InputFocusWatch(*this), &InputFocusWatch::left, this, [this] { requestClose_(); });
    // The keyboard stays in the field: there the selected row is told.
    const auto tell = [this] { field_->setAccessibleDescription(list_->selectedWords()); };
    connect(list_, &CommandList::selectionChanged, this, tell);
    tell();
    // The bar says what the user does to it before it does it.
    connect(area_->verticalScrollBar(), &QScrollBar::actionTriggered, list_, &CommandList::selectBelowPointer,
            Qt::QueuedConnection);
}

QWidget* CommandPaletteView::makeHeader() {
    auto* header = new QWidget;
    header->setFixedHeight(headerHeight);
    field_->setAccessibleName(QStringLiteral("搜索命令"));
    field_->setLeadingIcon(OVIcon::search);
    field_->setFontStyle(queryFont);
    field_->setBackground(OVTextField::Background::none);
    field_->installEventFilter(this);
    connect(field_, &QLineEdit::textChanged, this, [this](const QString& text) {
        viewModel_.setQuery(text.toStdString());
        revealSelection();
    });
    auto* close = new OVIconButton(environment(), OVIcon::close, QStringLiteral("关闭命令面板"));
    close->installEventFilter(this);
    connect(close, &QAbstractButton::clicked, this, [this] { requestClose_(); });
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(8, 0, 12, 0);
    row->setSpacing(6);
    row->addWidget(field_, 1);
    row->addWidget(close);
    return header;
}

void CommandPaletteView::present(const WindowRect& room) {
    if (!room.isEmpty()) move(fromWindowSpace(room.center()) - QPoint(width() / 2, height() / 2));
    show();
    activate(*windowHandle());
    field_->setFocus();
}

// What moves through the list goes there. The button keeps the keys that buttons know; what is typed goes on in the
// field.
bool CommandPaletteView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return OVFloatingWindow::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();  // NOLINT: its type says so
    if (watched == field_) return handleListKey(key) || OVFloatingWindow::eventFilter(watched, event);
    constexpr std::array ofButtons{Qt::Key_Tab,    Qt::Key_Backtab, Qt::Key_Space,
                                   Qt::Key_Return, Qt::Key_Enter,   Qt::Key_Escape};
    if (std::ranges::find(ofButtons, key) != ofButtons.end()) return OVFloatingWindow::eventFilter(watched, event);
    field_->setFocus();
    QCoreApplication::sendEvent(field_, event);
    return true;
}

bool CommandPaletteView::handleListKey(int key) {
    switch (key) {
        case Qt::Key_Up:
            viewModel_.moveSelection(-1);
            revealSelection();
            return true;
        case Qt::Key_Down:
            viewModel_.moveSelection(1);
            revealSelection();
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            viewModel_.executeSelected();
            return true;
        default:
            return false;
    }
}

void CommandPaletteView::revealSelection() {
    const QRect row = list_->selectedFrame();
    area_->ensureVisible(0, row.center().y(), 0, row.height() / 2 + 7);
}

void CommandPaletteView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel)) return requestClose_();
    OVFloatingWindow::keyPressEvent(event);
}

void CommandPaletteView::closeEvent(QCloseEvent* event) {
    event->ignore();
    requestClose_();
}

}  // namespace ovrin
