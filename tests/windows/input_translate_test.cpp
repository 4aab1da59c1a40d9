#include "panel_fixture.h"
#include "windows/input_translate_presenter.h"

namespace ovrin {
namespace {

class InputTranslateTest : public PanelTest {
protected:
    InputTranslateViewModel::Services windowServices() {
        ResultPanelViewModel::Services all = services();
        return {.loop = loop,
                .translation = std::move(all.translation),
                .history = history,
                .clipboard = clipboard,
                .toasts = toasts,
                .makeSpeech = std::move(all.makeSpeech)};
    }
};

class InputTranslateViewModelTest : public InputTranslateTest {
protected:
    void translate(const std::string& text) {
        window.setInputText(text);
        window.translate();
        loop.runPosted();
    }

    InputTranslateViewModel window{"", "zh-Hans", windowServices()};
};

TEST_F(InputTranslateViewModelTest, ABlankInputLeavesWhatIsThere) {
    willAnswer("你好");
    translate("hello");
    translate(" \n\t");
    EXPECT_EQ(window.outputText().value(), "你好");
    EXPECT_EQ(requests(), 1U);
}

TEST_F(InputTranslateViewModelTest, TheTargetIsThePickedOneUnlessTheTextIsInItAlready) {
    identifier.answer = "zh-Hans";
    willAnswer("hello");
    translate("你好");
    EXPECT_NE(lastSystemPrompt().find("BCP-47: en)"), std::string::npos);
    EXPECT_EQ(window.targetLanguage().value(), "zh-Hans");
    window.setTargetLanguage("ja");
    EXPECT_EQ(requests(), 1U);
    willAnswer("こんにちは");
    translate("你好");
    EXPECT_NE(lastSystemPrompt().find("BCP-47: ja)"), std::string::npos);
}

TEST_F(InputTranslateViewModelTest, SwappingKeepsTheTargetWhereNothingWasDetected) {
    identifier.answer = "en";
    willAnswer("是");
    translate("y");
    EXPECT_EQ(window.detectedLanguage().value(), std::nullopt);
    willAnswer("yes");
    window.swapLanguages();
    EXPECT_EQ(window.targetLanguage().value(), "zh-Hans");
}

TEST_F(InputTranslateViewModelTest, TellsWhetherThereIsSomethingToTranslate) {
    EXPECT_FALSE(window.canTranslate());
    window.setInputText(" \n");
    EXPECT_FALSE(window.canTranslate());
    window.setInputText("hello");
    EXPECT_TRUE(window.canTranslate());
    willStream("你");
    window.translate();
    EXPECT_FALSE(window.canTranslate());
    loop.runPosted();
    finish();
    EXPECT_TRUE(window.canTranslate());
}

TEST_F(InputTranslateViewModelTest, CopiesTheTranslationAndReadsItInTheLanguageItIsIn) {
    window.copyTranslation();
    window.speakTranslation();
    EXPECT_EQ(journal.take(), Events{});
    identifier.answer = "zh-Hans";
    willAnswer("hello");
    translate("你好");
    window.setTargetLanguage("ja");  // for the next one
    window.copyTranslation();
    window.speakTranslation();
    EXPECT_EQ(journal.take(),
              (Events{"clipboard: hello", "toast checkmark: 译文已复制", "silence", "speech en: hello"}));
}

class FakeWindow final : public InputTranslateWindow {
public:
    FakeWindow(Journal& journal, const InputTranslateViewModel& viewModel, std::function<void()> requestClose)
        : requestClose(std::move(requestClose)), journal_(journal), viewModel_(viewModel) {
        journal_.add("window");
    }
    FakeWindow(const FakeWindow&) = delete;
    FakeWindow& operator=(const FakeWindow&) = delete;
    ~FakeWindow() override { journal_.add("gone with " + viewModel_.inputText().value()); }

    const std::function<void()> requestClose;

    void present() override { journal_.add("present"); }

private:
    Journal& journal_;
    const InputTranslateViewModel& viewModel_;
};

class InputTranslatePresenterTest : public InputTranslateTest {
protected:
    InputTranslatePresenterTest() { variables["LANG"] = "ko_KR"; }

    Events events() {
        loop.runPosted();
        return journal.take();
    }

    FakeWindow* window = nullptr;
    InputTranslateViewModel* viewModel = nullptr;
    std::unique_ptr<InputTranslatePresenter> presenter = std::make_unique<InputTranslatePresenter>(
        windowServices(), config, [this](InputTranslateViewModel& shown, std::function<void()> requestClose) {
            auto made = std::make_unique<FakeWindow>(journal, shown, std::move(requestClose));
            viewModel = &shown;
            window = made.get();
            return made;
        });
};

TEST_F(InputTranslatePresenterTest, OpensAnEmptyWindowInTheDefaultLanguage) {
    presenter->show("");
    EXPECT_EQ(events(), (Events{"window", "present"}));
    EXPECT_EQ(viewModel->targetLanguage().value(), "ko");
    EXPECT_EQ(requests(), 0U);
}

TEST_F(InputTranslatePresenterTest, TranslatesWhatItIsOpenedWithAndKeepsItWhileItIsOpen) {
    defaults.setString("ovrin.targetLanguage", "en-US");
    willAnswer("hello");
    presenter->show("你好");
    EXPECT_EQ(events(), (Events{"window", "present"}));
    EXPECT_EQ(viewModel->outputText().value(), "hello");
    EXPECT_EQ(viewModel->targetLanguage().value(), "en-US");
    presenter->show("something else");
    EXPECT_EQ(events(), Events{"present"});
    EXPECT_EQ(viewModel->inputText().value(), "你好");
    EXPECT_EQ(requests(), 1U);
}

TEST_F(InputTranslatePresenterTest, AClosedWindowIsForgottenAndAsksForNothing) {
    willStream("hel");
    presenter->show("你好");
    loop.runPosted();
    const auto old = window->requestClose;
    old();
    presenter->show("");
    old();
    EXPECT_EQ(events(), (Events{"window", "present", "window", "present", "gone with 你好"}));
    EXPECT_TRUE(http.isBodyDropped());
    const auto last = window->requestClose;
    presenter.reset();
    last();
    EXPECT_EQ(events(), Events{"gone with "});
}

}  // namespace
}  // namespace ovrin
