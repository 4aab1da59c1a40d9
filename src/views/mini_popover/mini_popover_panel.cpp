#include "views/mini_popover/mini_popover_panel.h"

#include <QGuiApplication>
#include <QVBoxLayout>

#include "platform/linux/qt/qt_screens.h"
#include "views/mini_popover/mini_popover_view.h"
#include "windows/mini_popover_placement.h"

namespace ovrin {

namespace {
constexpr double cornerRadius = 16;
constexpr int shadowMargin = 26;  // points
}  // namespace

MiniPopoverPanel::MiniPopoverPanel(ViewEnvironment& environment, const Published<std::string>& brandImage,
                                   MiniPopoverViewModel& viewModel, std::function<void()> requestClose)
    : OVFloatingWindow(environment, cornerRadius, Focus::never) {
    setWindowTitle(QStringLiteral("即时翻译"));
    auto* view = new MiniPopoverView(environment, viewModel, brandImage);
    connect(view, &MiniPopoverView::closeRequested, this, std::move(requestClose));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(view);
    adaptShadow();
    connect(&environment, &ViewEnvironment::changed, this, &MiniPopoverPanel::adaptShadow);
}

// The frame keeps its place. In light surroundings the hairline sets it off enough.
void MiniPopoverPanel::adaptShadow() {
    const int margin = environment().isDark() && environment().settings().isComposited ? shadowMargin : 0;
    const QPoint corner = pos() + QPoint(layout()->contentsMargins().left(), layout()->contentsMargins().top());
    layout()->setContentsMargins(margin, margin, margin, margin);
    setShadowMargin(margin);
    const QSize size = QSizeF(miniPopoverSize.width, miniPopoverSize.height).toSize();
    setFixedSize(size.grownBy({margin, margin, margin, margin}));
    move(corner - QPoint(margin, margin));
}

void MiniPopoverPanel::present(Point origin) {
    if (QGuiApplication::primaryScreen() != nullptr) {
        const int margin = layout()->contentsMargins().left();
        move(fromWindowSpace({origin.x, origin.y + miniPopoverSize.height}) - QPoint(margin, margin));
    }
    show();
    raise();
}

}  // namespace ovrin
