#include "windows/direct_ai_window_presenter.h"

#include "panel_fixture.h"

namespace ovrin {
namespace {

std::string text(const DirectAIPanel::Form& form) {
    const auto text = [](const Size& size) {
        return std::to_string(static_cast<int>(size.width)) + "x" + std::to_string(static_cast<int>(size.height));
    };
    return text(form.size) + " min " + text(form.minimumSize) +
           (form.shadow == DirectAIPanel::Shadow::inDarkAppearance ? " dark shadow" : "");
}

// Like a window: when it goes it loses the keyboard.
class FakePanel final : public DirectAIPanel {
public:
    FakePanel(Journal& journal, const Form& form, Events events) : events(std::move(events)), journal_(journal) {
        journal_.add("panel " + text(form));
    }
    FakePanel(const FakePanel&) = delete;
    FakePanel& operator=(const FakePanel&) = delete;
    ~FakePanel() override {
        events.resignedKey();
        journal_.add("gone");
    }

    const Events events;
    bool isOnScreen = false;

    void present() override {
        isOnScreen = true;
        journal_.add("present");
    }
    bool isVisible() const override { return isOnScreen; }
    void animateTo(const Form& form) override { journal_.add("to " + text(form)); }

private:
    Journal& journal_;
};

class DirectAIWindowPresenterTest : public PanelTest {
protected:
    static inline const std::string compact = "540x150 min 480x140";
    static inline const std::string expanded = "580x560 min 480x420 dark shadow";

    void open() {
        presenter->show();
        loop.runPosted();
        journal.take();
    }
    void ask(const std::string& question) {
        viewModel->setDraft(question);
        viewModel->send();
        loop.runPosted();
    }
    Events events() {
        loop.runPosted();
        return journal.take();
    }

    FakePanel* panel = nullptr;
    DirectAIViewModel* viewModel = nullptr;
    std::unique_ptr<DirectAIWindowPresenter> presenter = std::make_unique<DirectAIWindowPresenter>(
        DirectAIViewModel::Services{.loop = loop, .ai = AIService(client), .prompts = prompts, .history = history},
        config, [this](DirectAIViewModel& shown, const DirectAIPanel::Form& form, DirectAIPanel::Events events) {
            auto made = std::make_unique<FakePanel>(journal, form, std::move(events));
            viewModel = &shown;
            panel = made.get();
            return made;
        });
};

TEST_F(DirectAIWindowPresenterTest, OpensOneBarAndBringsItBack) {
    defaults.setString("ovrin.targetLanguage", "fr-FR");
    presenter->show();
    EXPECT_EQ(events(), (Events{"panel " + compact, "present"}));
    EXPECT_EQ(viewModel->replyLanguage(), "fr");
    viewModel->setDraft("half a question");
    presenter->show();
    EXPECT_EQ(events(), Events{"present"});
    EXPECT_EQ(viewModel->draft().value(), "half a question");
}

TEST_F(DirectAIWindowPresenterTest, ABareBarGoesWithTheKeyboardAndAConversationStays) {
    open();
    willAnswer("a");
    ask("q");
    panel->events.resignedKey();
    EXPECT_EQ(events(), Events{"to " + expanded});
    viewModel->newConversation();
    loop.runPosted();
    journal.take();
    panel->isOnScreen = false;
    panel->events.resignedKey();
    EXPECT_EQ(events(), Events{});
    panel->isOnScreen = true;
    panel->events.resignedKey();
    EXPECT_EQ(journal.take(), Events{});  // not from inside the event
    EXPECT_EQ(events(), Events{"gone"});
}

TEST_F(DirectAIWindowPresenterTest, WhatAClosedChatStillAsksForTouchesNoOther) {
    open();
    const auto old = panel->events;
    old.resignedKey();
    old.requestClose();
    presenter->show();
    old.resignedKey();
    old.requestClose();
    EXPECT_EQ(events(), (Events{"panel " + compact, "present", "gone"}));

    // A question whose growth is still on its way when the chat goes, and the presenter with it.
    viewModel->setDraft("q");
    viewModel->send();
    panel->events.resignedKey();
    const auto last = panel->events;
    presenter.reset();
    last.requestClose();
    EXPECT_EQ(events(), Events{"gone"});
}

}  // namespace
}  // namespace ovrin
