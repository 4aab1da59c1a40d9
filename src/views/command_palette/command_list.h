// The commands of the palette that match: a row for each, with the selected one highlighted.
//
// The pointer selects the row that it comes over and leaves the list where it is, so that what is highlighted is what a
// click runs.
#pragma once

#include <vector>

#include "base/published.h"
#include "shortcuts/command_palette_view_model.h"
#include "views/components/ov_widget.h"
#include "views/components/spring_animation.h"

namespace ovrin {

class CommandRow;

class CommandList final : public OVWidget {
    Q_OBJECT

public:
    // The view model outlives it.
    CommandList(ViewEnvironment& environment, CommandPaletteViewModel& viewModel, QWidget* parent = nullptr);

    // Where the selected row lies in the widget.
    QRect selectedFrame() const;

    // The selected row in words, for assistive technology; what is said instead where nothing matches.
    QString selectedWords() const;

    // The row that has come below the resting pointer, if there is one.
    void selectBelowPointer();

signals:
    void selectionChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void makeRows();
    void showMatches();
    void showSelection();
    void run(const CommandRow& row);
    void selectAt(const QPoint& position);
    QRect rowFrame(int index) const;
    int rowAt(const QPoint& position) const;  // -1: none

    CommandPaletteViewModel& viewModel_;
    std::vector<CommandRow*> rows_;
    std::vector<CommandRow*> matches_;  // those that are shown
    int pressedRow_ = -1;
    SpringAnimation highlight_;  // the upper edge of the highlight
    std::vector<Subscription> subscriptions_;
};

}  // namespace ovrin
