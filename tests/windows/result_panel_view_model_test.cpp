#include "windows/result_panel_view_model.h"

#include "panel_fixture.h"

namespace ovrin {
namespace {

class ResultPanelViewModelTest : public PanelTest {
protected:
    ResultPanelViewModelTest() {
        history.save({.sourceText = "text", .resultText = std::nullopt, .recordType = "capture-translation"});
    }

    std::unique_ptr<ResultPanelViewModel> make(ResultPanelViewModel::Content content) {
        return std::make_unique<ResultPanelViewModel>(std::move(content), services());
    }
    std::unique_ptr<ResultPanelViewModel> make() {
        return make({.originalText = "text",
                     .translation = "",
                     .ocrResult = std::nullopt,
                     .sourceImage = std::nullopt,
                     .targetLanguageSetting = "fr"});
    }

    // With a finished first answer.
    std::unique_ptr<ResultPanelViewModel> makeAnswered() {
        auto panel = make();
        willAnswer("a0");
        panel->submit("q0", AIAction::summarize);
        loop.runPosted();
        return panel;
    }
};

TEST_F(ResultPanelViewModelTest, ChoosesItsLanguages) {
    const struct {
        std::string setting, detected, target, reply;
    } rows[] = {
        {"zh-Hans", "en", "zh-Hans", "zh-Hans"},
        {"zh-Hans", "zh-Hans-CN", "en", "zh-Hans"},
        {"en-US", "en", "zh-Hans", "en"},
        {"zh-Hant-TW", "zh-Hans", "zh-Hant", "zh-Hant"},
        {"", "fr", "ja", "ja"},
        {"", "ja", "en", "ja"},
    };
    for (const auto& row : rows) {
        identifier.answer = row.detected;
        const auto panel = make({.originalText = "some text",
                                 .translation = "",
                                 .ocrResult = std::nullopt,
                                 .sourceImage = std::nullopt,
                                 .targetLanguageSetting = row.setting});
        EXPECT_EQ(panel->sourceLanguage(), row.detected);
        EXPECT_EQ(panel->targetLanguage(), row.target) << row.setting << " " << row.detected;
        EXPECT_EQ(panel->replyLanguage(), row.reply);
    }
}

TEST_F(ResultPanelViewModelTest, TheRecognisersLanguageGoesBeforeTheTexts) {
    identifier.answer = "de";
    const auto make = [this](std::optional<std::string> detected) {
        return this->make({.originalText = "text",
                           .translation = "",
                           .ocrResult = OCRResult{.detectedLanguage = std::move(detected)},
                           .sourceImage = std::nullopt,
                           .targetLanguageSetting = "fr"});
    };
    EXPECT_EQ(make("ko")->sourceLanguage(), "ko");
    EXPECT_EQ(make(std::nullopt)->sourceLanguage(), "de");
    identifier.answer = std::nullopt;
    EXPECT_EQ(make(std::nullopt)->sourceLanguage(), std::nullopt);
    EXPECT_EQ(make(std::nullopt)->targetLanguage(), "fr");
}

TEST_F(ResultPanelViewModelTest, AFailedTranslationKeepsWhatCameAndANewOneStartsClean) {
    const auto panel = make();
    willStream("Bon");
    panel->translate();
    panel->setShowsImageOverlay(true);
    loop.runPosted();
    http.openBody().fail(std::make_exception_ptr(Error("the line broke")));
    loop.runPosted();
    EXPECT_FALSE(panel->isTranslating().value());
    EXPECT_EQ(panel->translation().value(), "Bon");
    const std::optional<std::string> message = panel->errorMessage().value();
    ASSERT_TRUE(message);
    EXPECT_NE(message->find("the line broke"), std::string::npos);
    EXPECT_EQ(panel->failed(), ResultPanelViewModel::Failed::translation);
    EXPECT_FALSE(panel->showsImageOverlay().value()) << "the message would be hidden";
    EXPECT_EQ(latestResult(), std::nullopt);

    willStream("Salut");
    panel->translate();
    EXPECT_EQ(panel->translation().value(), "");
    EXPECT_EQ(panel->errorMessage().value(), std::nullopt);
    loop.runPosted();

    // Again while it runs: the first request is given up, and the state never leaves "translating".
    const auto watch = panel->isTranslating().onDidChange([this](bool) { journal.add("changed"); });
    const StreamWriter<std::string> old = std::move(http.openBody());
    willAnswer("Allô");
    panel->translate();
    EXPECT_EQ(journal.take(), Events{});
    loop.runPosted();
    EXPECT_TRUE(old.stopToken().stop_requested());
    EXPECT_EQ(panel->translation().value(), "Allô");
    EXPECT_EQ(journal.take(), Events{"changed"});
}

TEST_F(ResultPanelViewModelTest, CancellingKeepsTheTextsAndSaysNothing) {
    const auto panel = makeAnswered();
    willStream("Bon");
    panel->translate();
    loop.runPosted();
    panel->cancel();
    EXPECT_FALSE(panel->isTranslating().value());
    loop.runPosted();
    EXPECT_TRUE(http.isBodyDropped());

    willStream("half");
    panel->askFollowUp("q1");
    loop.runPosted();
    panel->cancel();
    loop.runPosted();
    EXPECT_TRUE(http.isBodyDropped());
    EXPECT_FALSE(panel->isFollowUpStreaming());
    EXPECT_EQ(panel->followUps()->front().answer, "half");
    EXPECT_EQ(panel->translation().value(), "Bon");
    EXPECT_EQ(panel->errorMessage().value(), std::nullopt);
    EXPECT_EQ(latestResult(), "q0\na0");
}

TEST_F(ResultPanelViewModelTest, TheFirstQuestionOpensAConversation) {
    const auto panel = make();
    willStream("Bon");
    panel->translate();
    loop.runPosted();
    panel->setFollowUpPrompt("draft");
    const StreamWriter<std::string> translation = std::move(http.openBody());

    willStream("It ");
    panel->submit(" what?\n", AIAction::whatIsThis);
    EXPECT_FALSE(panel->isTranslating().value());
    EXPECT_EQ(panel->translation().value(), "Bon");
    EXPECT_TRUE(panel->hasConversation());
    EXPECT_TRUE(panel->isAIStreaming().value());
    EXPECT_EQ(panel->selectedAIAction().value(), AIAction::whatIsThis);
    EXPECT_EQ(panel->initialQuestion().value(), "what?");
    EXPECT_EQ(panel->followUpPrompt().value(), "");
    loop.runPosted();
    EXPECT_TRUE(translation.stopToken().stop_requested());
    EXPECT_EQ(lastRequest(), Events{"user: OCR content (the default subject of this conversation):\ntext\n\nQuestion "
                                    "about the OCR content:\nwhat?"});
    EXPECT_EQ(lastSystemPrompt(), prompts.ocrConversationSystemPrompt(AIAction::whatIsThis, "fr", "what?"));
    push("is.");
    EXPECT_EQ(panel->aiOutput().value(), "It is.");
    EXPECT_EQ(latestResult(), std::nullopt);
    finish();
    EXPECT_FALSE(panel->isAIStreaming().value());
    EXPECT_EQ(latestResult(), "what?\nIt is.");
}

TEST_F(ResultPanelViewModelTest, NothingIsAskedWithoutAQuestionOrWhileAnAnswerStreams) {
    const auto panel = make();
    panel->submit(" \n", AIAction::explain);
    panel->askFollowUp("too early");
    EXPECT_FALSE(panel->hasConversation());

    willStream("a");
    panel->submit("q0", AIAction::explain);
    loop.runPosted();
    panel->setFollowUpPrompt("next");
    EXPECT_FALSE(panel->canSubmitPrompt());
    panel->submit("again", AIAction::summarize);
    panel->askFollowUp(std::nullopt);
    finish();
    EXPECT_EQ(requests(), 1U);
    EXPECT_TRUE(panel->canSubmitPrompt());

    willStream("b");
    panel->askFollowUp(std::nullopt);
    loop.runPosted();
    EXPECT_TRUE(panel->isFollowUpStreaming());
    panel->setFollowUpPrompt("next");
    EXPECT_FALSE(panel->canSubmitPrompt());
    panel->submit("again", AIAction::summarize);
    panel->askFollowUp("again");
    finish();
    panel->setFollowUpPrompt(" \t\n");
    EXPECT_FALSE(panel->canSubmitPrompt());
    panel->askFollowUp(std::nullopt);
    loop.runPosted();
    EXPECT_EQ(requests(), 2U);
}

TEST_F(ResultPanelViewModelTest, AFurtherQuestionCarriesTheWholeConversation) {
    const auto panel = makeAnswered();
    panel->setFollowUpPrompt(" q1 ");
    willAnswer("a1");
    panel->askFollowUp(std::nullopt);
    EXPECT_EQ(panel->followUpPrompt().value(), "");
    loop.runPosted();
    const std::vector<FollowUpMessage>& turns = panel->followUps().value();
    EXPECT_EQ(turns.front().question, "q1");
    EXPECT_EQ(turns.front().answer, "a1");
    EXPECT_FALSE(turns.front().isStreaming);
    EXPECT_EQ(latestResult(), "q0\na0\n\nq1\na1");

    // A suggestion's own action no longer counts.
    willStream("a");
    panel->submit("q2", AIAction::translateBetter);
    EXPECT_EQ(panel->selectedAIAction().value(), AIAction::summarize);
    loop.runPosted();
    EXPECT_EQ(lastSystemPrompt(), prompts.ocrConversationSystemPrompt(AIAction::summarize, "fr", "q2"));
    const std::string opening =
        "user: OCR content (the default subject of this conversation):\ntext\n\n"
        "Initial question about the OCR content:\nq0";
    const std::string question =
        "user: Follow-up question about the OCR content unless explicitly stated otherwise:\nq2";
    EXPECT_EQ(lastRequest(), (Events{opening, "assistant: a0", "user: q1", "assistant: a1", question}));
    push("2");
    EXPECT_EQ(panel->followUps()->back().answer, "a2");
    EXPECT_NE(panel->followUps()->front().id, panel->followUps()->back().id);
    finish();
    EXPECT_EQ(latestResult(), "q0\na0\n\nq1\na1\n\nq2\na2");
}

TEST_F(ResultPanelViewModelTest, AFailureOfAFurtherQuestionIsItsAnswer) {
    const auto panel = makeAnswered();
    http.willAnswer({.statusCode = 500});
    panel->askFollowUp("q1");
    loop.runPosted();
    EXPECT_EQ(panel->errorMessage().value(), std::nullopt);
    EXPECT_EQ(panel->followUps()->front().answer, "请求失败（HTTP 500）");
    EXPECT_FALSE(panel->isFollowUpStreaming());
    EXPECT_EQ(latestResult(), "q0\na0");

    willAnswer("a2");
    panel->askFollowUp("q2");
    loop.runPosted();
    const Events sent = lastRequest();
    ASSERT_EQ(sent.size(), 5U);
    EXPECT_EQ(sent[2], "user: q1");
    EXPECT_EQ(sent[3], "assistant: 请求失败（HTTP 500）");
}

TEST_F(ResultPanelViewModelTest, AFailedFirstAnswerAllowsANewFirstQuestionOnly) {
    const auto panel = make();
    http.willAnswer({.statusCode = 500});
    panel->submit("q0", AIAction::explain);
    loop.runPosted();
    EXPECT_FALSE(panel->isAIStreaming().value());
    EXPECT_EQ(panel->errorMessage().value(), "请求失败（HTTP 500）");
    EXPECT_EQ(panel->failed(), ResultPanelViewModel::Failed::firstAnswer);
    EXPECT_EQ(panel->aiOutput().value(), "");
    EXPECT_EQ(latestResult(), std::nullopt);
    panel->askFollowUp("q1");
    EXPECT_TRUE(panel->followUps()->empty());

    willAnswer("a");
    panel->submit("q2", AIAction::summarize);
    EXPECT_EQ(panel->errorMessage().value(), std::nullopt);
    loop.runPosted();
    EXPECT_EQ(panel->selectedAIAction().value(), AIAction::summarize);
    EXPECT_EQ(latestResult(), "q2\na");
}

TEST_F(ResultPanelViewModelTest, ARunningTranslationOutlastsAFurtherQuestionAndTheEndOfTheConversation) {
    const auto panel = makeAnswered();
    willStream("Bon");
    panel->translate();
    loop.runPosted();
    StreamWriter<std::string> translation = std::move(http.openBody());

    willStream("a");
    panel->askFollowUp("q1");
    loop.runPosted();
    translation.push(event("jour"));
    loop.runPosted();
    EXPECT_EQ(panel->translation().value(), "Bonjour");

    panel->setFollowUpPrompt("draft");
    panel->closeAIConversation();
    EXPECT_FALSE(panel->hasConversation());
    EXPECT_FALSE(panel->isAIStreaming().value());
    EXPECT_EQ(panel->initialQuestion().value(), "");
    EXPECT_EQ(panel->followUpPrompt().value(), "");
    loop.runPosted();
    EXPECT_TRUE(http.isBodyDropped());
    EXPECT_FALSE(translation.stopToken().stop_requested());
    translation.push(event("!"));
    translation.finish();
    loop.runPosted();
    EXPECT_FALSE(panel->isTranslating().value());
    EXPECT_EQ(panel->translation().value(), "Bonjour!");

    // The next question opens a new conversation with its own action.
    willAnswer("b");
    panel->submit("q2", AIAction::explain);
    EXPECT_EQ(panel->selectedAIAction().value(), AIAction::explain);
}

TEST_F(ResultPanelViewModelTest, ANewTranslationEndsAStreamingAnswer) {
    const auto panel = make();
    willStream("a");
    panel->submit("q0", AIAction::explain);
    loop.runPosted();
    const StreamWriter<std::string> answer = std::move(http.openBody());
    willAnswer("Bonjour");
    panel->translate();
    EXPECT_FALSE(panel->isAIStreaming().value());
    loop.runPosted();
    EXPECT_TRUE(answer.stopToken().stop_requested());
    EXPECT_EQ(panel->aiOutput().value(), "a");
    EXPECT_EQ(panel->translation().value(), "Bonjour");
}

TEST_F(ResultPanelViewModelTest, ShowsTheOverlayOfATranslatedPictureOnly) {
    const auto canShow = [this](bool hasResult, bool hasImage, std::string translation) {
        return make({.originalText = "text",
                     .translation = std::move(translation),
                     .ocrResult = hasResult ? std::optional(OCRResult{}) : std::nullopt,
                     .sourceImage = hasImage ? std::optional(Image()) : std::nullopt,
                     .targetLanguageSetting = "fr"})
            ->canShowOverlay();
    };
    EXPECT_TRUE(canShow(true, true, "t"));
    EXPECT_FALSE(canShow(false, true, "t"));
    EXPECT_FALSE(canShow(true, false, "t"));
    EXPECT_FALSE(canShow(true, true, ""));
}

TEST_F(ResultPanelViewModelTest, AQuestionReturnsFromTheOverlayToTheTextThatWillHoldItsAnswer) {
    const auto panel = make();
    const auto showsOverlayAfter = [&](const std::string& question) {
        panel->setShowsImageOverlay(true);
        willAnswer("a");
        panel->submit(question, AIAction::explain);
        loop.runPosted();
        return panel->showsImageOverlay().value();
    };
    EXPECT_FALSE(showsOverlayAfter("q0"));
    EXPECT_FALSE(showsOverlayAfter("q1"));
    EXPECT_TRUE(showsOverlayAfter(" "));
}

TEST_F(ResultPanelViewModelTest, CopiesAndReadsWhatIsMostWanted) {
    identifier.answer = "de";
    const auto panel = make();
    panel->copyPrimaryText();
    panel->speakPrimaryText();
    EXPECT_EQ(journal.take(), (Events{"clipboard: text", "toast checkmark: 内容已复制", "silence", "speech de: text"}));
    EXPECT_EQ(speech->lastUtterance.rate, 0.48);

    willAnswer("Bonjour");
    panel->translate();
    loop.runPosted();
    panel->copyPrimaryText();
    panel->speakPrimaryText();
    EXPECT_EQ(journal.take(),
              (Events{"clipboard: Bonjour", "toast checkmark: 内容已复制", "silence", "speech fr: Bonjour"}));

    hasVoice = false;
    panel->speakPrimaryText();
    EXPECT_EQ(journal.take().back(), "toast exclamationmark.triangle: 没有可用的朗读语音。");

    const auto empty = make({.originalText = "",
                             .translation = "",
                             .ocrResult = std::nullopt,
                             .sourceImage = std::nullopt,
                             .targetLanguageSetting = "fr"});
    empty->speakPrimaryText();
    EXPECT_EQ(journal.take(), Events{});
}

}  // namespace
}  // namespace ovrin
