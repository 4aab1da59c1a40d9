#include "views/command_palette/command_palette_view.h"

#include <QAccessible>
#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScrollBar>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "views/command_palette/command_list.h"
#include "views/command_palette/command_row.h"
#include "views/components/ov_scroll_area.h"

namespace ovrin {
namespace {

class CommandPaletteViewTest : public testing::Test {
protected:
    CommandPaletteViewTest() {
        environment.setSettings({.reducesMotion = true});
        view.present({100, 50, 1200, 700});
        QApplication::processEvents();
    }
    std::vector<CommandItem> commands() {
        std::vector<CommandItem> items;
        for (int number = 0; number < 12; ++number) {
            const std::string name = std::to_string(number);
            items.push_back({.id = name,
                             .title = "命令" + name,
                             .subtitle = number < 10 ? "做事" : "少见",
                             .symbolName = "sparkles",
                             .shortcutDisplay = number == 0 ? std::optional<std::string>("⌘K") : std::nullopt,
                             .action = [this, number] { ran.push_back(number); }});
        }
        return items;
    }
    void point(QEvent::Type type, const QPoint& place) const {
        const QPoint global = area->viewport()->mapToGlobal(place);
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, list->mapFromGlobal(global), global, button, button, Qt::NoModifier);
        QApplication::sendEvent(list, &event);
    }
    QStringList itemNames() const {
        QStringList names;
        const auto* const told = QAccessible::queryAccessibleInterface(list);
        for (int index = 0; index < told->childCount(); ++index) {
            const QAccessibleInterface* const item = told->child(index);
            if (item->role() == QAccessible::ListItem && !item->state().invisible) {
                names.push_back(item->text(QAccessible::Name));
            }
        }
        return names;
    }

    std::vector<int> ran;
    ViewEnvironment environment;
    CommandPaletteViewModel viewModel{commands(), [] {}, text::CaseRules::general};
    CommandPaletteView view{environment, viewModel, [] {}};
    CommandList* list = view.findChild<CommandList*>();
    OVScrollArea* area = view.findChild<OVScrollArea*>();
    QLineEdit* field = view.findChild<QLineEdit*>();
};

TEST_F(CommandPaletteViewTest, ARowCutAtTheEdgeIsTheOneThatIsHighlightedAndRun) {
    const QPoint lowest(100, area->viewport()->height() - 2);
    point(QEvent::MouseMove, lowest);
    const int selected = viewModel.selectedIndex().value();
    EXPECT_GT(selected, 5);
    EXPECT_EQ(area->verticalScrollBar()->value(), 0);
    point(QEvent::MouseButtonPress, lowest);
    point(QEvent::MouseButtonRelease, lowest);
    EXPECT_EQ(ran, std::vector{selected});
}

TEST_F(CommandPaletteViewTest, ThePressSelectsWhatAClickRunsAfterTheKeysHaveMoved) {
    point(QEvent::MouseMove, {100, 30});
    for (int press = 0; press < 11; ++press) {
        QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
        QApplication::sendEvent(field, &down);
    }
    EXPECT_GT(area->verticalScrollBar()->value(), 0);
    point(QEvent::MouseButtonPress, {100, 60});
    const int selected = viewModel.selectedIndex().value();
    EXPECT_LT(selected, 11);
    point(QEvent::MouseButtonRelease, {100, 60});
    EXPECT_EQ(ran, std::vector{selected});
}

TEST_F(CommandPaletteViewTest, ItsCommandsAreItemsOfAListThatCanBePressed) {
    EXPECT_EQ(itemNames().size(), 12);
    QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(list);
    EXPECT_EQ(told->role(), QAccessible::List);
    EXPECT_EQ(told->child(0)->text(QAccessible::Description), "做事");
    EXPECT_EQ(told->child(0)->actionInterface()->keyBindingsForAction(QAccessibleActionInterface::pressAction()),
              QStringList{"⌘K"});
    viewModel.moveSelection(1);
    EXPECT_FALSE(told->child(0)->state().selected);
    EXPECT_TRUE(told->child(1)->state().selected);

    field->setText("少见");
    EXPECT_EQ(itemNames(), (QStringList{"命令10", "命令11"}));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(field)->text(QAccessible::Description), "命令10，少见");
    told->child(11)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(ran, std::vector{11});
}

}  // namespace
}  // namespace ovrin
