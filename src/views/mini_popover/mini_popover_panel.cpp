#include "views/mini_popover/mini_popover_panel.h"

#include <QGuiApplication>
#include <QVBoxLayout>

#include "platform/linux/qt/qt_screens.h"
#include "views/mini_popover/mini_popover_view.h"
#include "windows/mini_popover_placement.h"

namespace ovrin {

namespace {
constexpr double cornerRadius = 16;
}  // namespace

MiniPopoverPanel::MiniPopoverPanel(ViewEnvironment& environment, const Published<std::string>& brandImage,
                                   MiniPopoverViewModel& viewModel, std::function<void()> requestClose)
    : OVFloatingWindow(environment, cornerRadius, WindowRole::card) {
    setWindowTitle(QStringLiteral("即时翻译"));
    auto* view = new MiniPopoverView(environment, viewModel, brandImage);
    connect(view, &MiniPopoverView::closeRequested, this, std::move(requestClose));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view);
    setFrameSize(QSizeF(miniPopoverSize.width, miniPopoverSize.height).toSize());
}

void MiniPopoverPanel::present(WindowPoint origin) {
    if (QGuiApplication::primaryScreen() != nullptr) {
        moveFrame(fromWindowSpace({origin.x, origin.y + miniPopoverSize.height}));
    }
    show();
    raise();
}

}  // namespace ovrin
