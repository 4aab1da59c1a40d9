// The rows of the command palette: icon, title, what the command does, shortcut. The selected one is highlighted.
#pragma once

#include <vector>

#include "base/published.h"
#include "shortcuts/command_palette_view_model.h"
#include "views/components/ov_widget.h"
#include "views/components/spring_animation.h"

namespace ovrin {

class CommandList final : public OVWidget {
    Q_OBJECT

public:
    // The view model outlives it.
    CommandList(ViewEnvironment& environment, CommandPaletteViewModel& viewModel, QWidget* parent = nullptr);

    // Where the row lies in the widget.
    QRect rowFrame(int index) const;

    // The row in words, for assistive technology; what is said instead where nothing matches.
    QString rowText(int index) const;

signals:
    // The row wants to be seen.
    void selected(int index);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void showItems();
    void showSelection(int index);
    int rowAt(const QPoint& position) const;  // -1: none
    void drawRow(QPainter& painter, const CommandItem& item, const QRect& frame, bool isSelected) const;
    int drawShortcut(QPainter& painter, const CommandItem& item, const QRect& frame) const;

    CommandPaletteViewModel& viewModel_;
    std::vector<CommandItem> items_;
    int pressedRow_ = -1;
    SpringAnimation highlight_;  // the upper edge of the highlight
    std::vector<Subscription> subscriptions_;
};

}  // namespace ovrin
