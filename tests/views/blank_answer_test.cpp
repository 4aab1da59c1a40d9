// An answer that ended without text is said to have, in every window that shows answers.
#include <QApplication>
#include <QLabel>

#include "model/deep_seek_error.h"
#include "views/components/ov_button.h"
#include "views/direct_ai/direct_ai_conversation.h"
#include "views/input_translate/output_pane.h"
#include "views/mini_popover/mini_popover_view.h"
#include "views/result_panel/result_panel_view.h"
#include "windows/direct_ai_view_model.h"
#include "windows/input_translate_view_model.h"
#include "windows/mini_popover_view_model.h"
#include "windows/panel_fixture.h"

namespace ovrin {
namespace {

class BlankAnswerTest : public PanelTest {
protected:
    static std::ptrdiff_t notes(QWidget& view) {
        view.show();
        QApplication::processEvents();
        return std::ranges::count_if(view.findChildren<QLabel*>(), [](const QLabel* label) {
            return label->isVisible() &&
                   label->text().toStdString() == DeepSeekError::emptyResponse().errorDescription();
        });
    }
    TranslationService translation() { return services().translation; }

    ViewEnvironment environment;
    Published<std::string> brandImage{"EntranceIconLight"};
};

TEST_F(BlankAnswerTest, IsSaidInThePanelOncePerAnswerUntilTheNextAttempt) {
    ResultPanelViewModel viewModel({.originalText = "text",
                                    .translation = {},
                                    .ocrResult = std::nullopt,
                                    .sourceImage = std::nullopt,
                                    .targetLanguageSetting = "zh-Hans"},
                                   services());
    ResultPanelView view(environment, viewModel, brandImage);
    const auto answer = [&](const std::string& text, auto ask) {
        willAnswer(text);
        ask();
        loop.runPosted();
        return notes(view);
    };
    EXPECT_EQ(answer(" \n", [&] { viewModel.translate(); }), 1);
    EXPECT_EQ(answer("译文", [&] { viewModel.translate(); }), 0);
    EXPECT_EQ(answer("", [&] { viewModel.submit("问", AIAction::summarize); }), 1);
    EXPECT_EQ(answer("答", [&] { viewModel.submit("问", AIAction::summarize); }), 0);
    EXPECT_EQ(answer("", [&] { viewModel.submit("再问", AIAction::summarize); }), 1);
    EXPECT_TRUE(viewModel.followUps()->front().answer.empty());

    willStream("");
    viewModel.translate();
    loop.runPosted();
    viewModel.cancel();
    loop.runPosted();
    EXPECT_EQ(notes(view), 1) << "only that of the conversation";
}

TEST_F(BlankAnswerTest, IsSaidInTheOtherWindows) {
    willAnswer(" \n");
    MiniPopoverViewModel card("text", "zh-Hans",
                              {.loop = loop, .translation = translation(), .clipboard = clipboard, .toasts = toasts});
    MiniPopoverView cardView(environment, card, brandImage);
    EXPECT_EQ(notes(cardView), 0);  // showing it starts the translation
    loop.runPosted();
    EXPECT_EQ(notes(cardView), 1);
    for (const auto* const button : cardView.findChildren<OVButton*>()) EXPECT_FALSE(button->isEnabled());

    willAnswer("");
    InputTranslateViewModel input("text", "zh-Hans",
                                  {.loop = loop,
                                   .translation = translation(),
                                   .history = history,
                                   .clipboard = clipboard,
                                   .toasts = toasts,
                                   .makeSpeech = services().makeSpeech});
    OutputPane pane(environment, input);
    input.translate();
    loop.runPosted();
    EXPECT_EQ(notes(pane), 1);
    input.clear();
    EXPECT_EQ(notes(pane), 0);

    willAnswer("");
    DirectAIViewModel chat("zh-Hans", {.loop = loop, .ai = AIService(client), .prompts = prompts, .history = history});
    DirectAIConversation conversation(environment, chat, brandImage);
    chat.setDraft("问");
    chat.send();
    loop.runPosted();
    EXPECT_EQ(notes(conversation), 1);
}

}  // namespace
}  // namespace ovrin
