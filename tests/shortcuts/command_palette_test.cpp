#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/virtual_loop.h"
#include "fakes/fake_assistant_actions.h"
#include "fakes/fake_desktop_layout.h"
#include "shortcut_fixture.h"
#include "shortcuts/command_palette_presenter.h"

namespace ovrin {
namespace {

class CommandPaletteTest : public ShortcutTest {
protected:
    std::vector<std::string> filtered(const std::string& query) {
        palette.setQuery(query);
        std::vector<std::string> ids;
        for (const auto& item : palette.filteredItems()) ids.push_back(item.id);
        return ids;
    }

    FakeAssistantActions actions{journal};
    CommandPaletteViewModel palette{CommandItem::defaultItems(actions, registry), [this] { journal.add("close"); },
                                    text::CaseRules::general};
};

TEST_F(CommandPaletteTest, ShowsAllCommandsForABlankQuery) {
    const std::vector<std::string> all{"capture-ocr",      "capture-translate",   "what-is-this",
                                       "direct-ai",        "input-translate",     "selection",
                                       "silent-selection", "replace-selection",   "silent-capture-ocr",
                                       "clipboard-ocr",    "clipboard-translate", "latest"};
    EXPECT_EQ(filtered(""), all);
    EXPECT_EQ(filtered(" \n\t"), all);
    EXPECT_EQ(palette.selectedIndex().value(), 0);
}

TEST_F(CommandPaletteTest, FindsTitlesAndSubtitlesInAnyCase) {
    EXPECT_EQ(filtered(" ocr "), (Events{"capture-ocr", "silent-capture-ocr", "clipboard-ocr"}));
    EXPECT_EQ(filtered("AI"), (Events{"what-is-this", "direct-ai"}));
    EXPECT_EQ(filtered("viewfinder"), Events{});
    EXPECT_EQ(filtered("latest"), Events{});
}

TEST_F(CommandPaletteTest, TheSelectionStopsAtBothEnds) {
    filtered("ocr");
    palette.moveSelection(-1);
    EXPECT_EQ(palette.selectedIndex().value(), 0);
    for (int press = 0; press < 5; ++press) palette.moveSelection(1);
    EXPECT_EQ(palette.selectedIndex().value(), 2);
    palette.executeSelected();
    EXPECT_EQ(journal.take(), (Events{"close", "clipboardOCR"}));
}

TEST_F(CommandPaletteTest, TypingSelectsTheFirstRowAgain) {
    palette.moveSelection(4);
    const auto subscription = palette.query().onDidChange(
        [&](const std::string&) { journal.add(std::to_string(palette.selectedIndex().value())); });
    palette.setQuery("翻译");
    EXPECT_EQ(journal.events(), (Events{"0"}));
}

TEST_F(CommandPaletteTest, WithoutAMatchNothingRuns) {
    filtered("nothing of the kind");
    palette.moveSelection(1);
    palette.executeSelected();
    EXPECT_EQ(palette.selectedIndex().value(), 0);
    EXPECT_EQ(journal.events(), Events{});
}

TEST_F(CommandPaletteTest, ShowsTheShortcutsThatAreAssignedAndNotRefused) {
    registry.setShortcut(commandShiftT, {.rawValue = "ovrin.captureTranslate"});
    hotKeys.takenByOthers = {commandShiftW};
    registry.setShortcut(commandShiftW, {.rawValue = "ovrin.askWhatIsThis"});
    const auto items = CommandItem::defaultItems(actions, registry);
    EXPECT_EQ(items[0].shortcutDisplay, std::nullopt);
    EXPECT_EQ(items[1].shortcutDisplay, "Super+Shift+T");
    EXPECT_EQ(items[2].shortcutDisplay, std::nullopt);
}

// Like a window: when it is hidden it loses the keyboard, and then asks to be closed.
class FakePanel final : public CommandPalettePanel {
public:
    FakePanel(Journal& journal, std::function<void()> requestClose)
        : journal_(journal), requestClose_(std::move(requestClose)) {}
    FakePanel(const FakePanel&) = delete;
    FakePanel& operator=(const FakePanel&) = delete;
    ~FakePanel() override { journal_.add("destroyed"); }

    void present(const WindowRect& given) override {
        isVisible_ = true;
        room = given;
        journal_.add("present");
    }
    bool isVisible() const override { return isVisible_; }
    void orderOut() override {
        isVisible_ = false;
        journal_.add("orderOut");
        requestClose_();
    }
    void hideByItself() { isVisible_ = false; }

    WindowRect room;

private:
    Journal& journal_;
    std::function<void()> requestClose_;
    bool isVisible_ = false;
};

class CommandPalettePresenterTest : public ShortcutTest {
protected:
    VirtualLoop loop;
    FakeAssistantActions actions{journal};
    FakeDesktopLayout desktop;
    CommandPaletteViewModel* viewModel = nullptr;
    FakePanel* panel = nullptr;
    CommandPalettePresenter presenter{actions,
                                      registry,
                                      desktop,
                                      [this](CommandPaletteViewModel& shown, std::function<void()> requestClose) {
                                          viewModel = &shown;
                                          auto made = std::make_unique<FakePanel>(journal, std::move(requestClose));
                                          panel = made.get();
                                          return made;
                                      },
                                      loop,
                                      text::CaseRules::general};
};

TEST_F(CommandPalettePresenterTest, TheShortcutOpensAndCloses) {
    presenter.show();
    EXPECT_EQ(journal.take(), (Events{"present"}));
    presenter.show();
    EXPECT_EQ(journal.take(), (Events{"orderOut"}));
    loop.runPosted();
    EXPECT_EQ(journal.take(), (Events{"destroyed"}));
    presenter.show();
    EXPECT_EQ(journal.take(), (Events{"present"}));
}

TEST_F(CommandPalettePresenterTest, ComesUpOnThePointersDisplayOnceThatIsKnown) {
    desktop.listed.push_back({.frame = {1920, 0, 800, 600}, .visibleFrame = {1920, 40, 800, 560}});
    desktop.isSlow = true;
    presenter.show();
    loop.runPosted();
    EXPECT_EQ(journal.take(), Events{});
    desktop.place.succeed({2000, 300});
    loop.runPosted();
    EXPECT_EQ(panel->room, (WindowRect{1920, 40, 800, 560}));
    presenter.close();

    // Thought better of before it was there.
    presenter.show();
    journal.take();
    presenter.show();
    desktop.place.succeed({0, 0});
    loop.runPosted();
    EXPECT_EQ(journal.take(), (Events{"orderOut", "destroyed", "destroyed"}));
}

TEST_F(CommandPalettePresenterTest, AHiddenPanelIsReplacedByAFreshOne) {
    presenter.show();
    viewModel->setQuery("ocr");
    panel->hideByItself();
    presenter.show();
    EXPECT_EQ(viewModel->query().value(), "");
    EXPECT_EQ(journal.take(), (Events{"present", "orderOut", "present"}));
    loop.runPosted();
    EXPECT_TRUE(panel->isVisible());
}

TEST_F(CommandPalettePresenterTest, ACommandRunsWithThePaletteClosedButNotYetDestroyed) {
    presenter.show();
    viewModel->execute(1);
    loop.runPosted();
    EXPECT_EQ(journal.events(), (Events{"present", "orderOut", "captureTranslate", "destroyed"}));
}

}  // namespace
}  // namespace ovrin
