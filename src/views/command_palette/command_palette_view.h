// The floating window of the command palette: a search field over the list of commands.
#pragma once

#include <functional>

#include "shortcuts/command_palette_presenter.h"
#include "views/components/ov_floating_window.h"

namespace ovrin {

class CommandList;
class OVScrollArea;
class OVTextField;

class CommandPaletteView final : public OVFloatingWindow, public CommandPalettePanel {
    Q_OBJECT

public:
    // For MakeCommandPalettePanel.
    CommandPaletteView(ViewEnvironment& environment, CommandPaletteViewModel& viewModel,
                       std::function<void()> requestClose);

    void present(const WindowRect& room) override;
    bool isVisible() const override { return QWidget::isVisible(); }
    void orderOut() override { hide(); }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeHeader();
    bool handleListKey(int key);
    void revealSelection();

    CommandPaletteViewModel& viewModel_;
    std::function<void()> requestClose_;
    OVTextField* field_;
    OVScrollArea* area_;
    CommandList* list_;
};

}  // namespace ovrin
