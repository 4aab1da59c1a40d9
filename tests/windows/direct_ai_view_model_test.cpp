#include "windows/direct_ai_view_model.h"

#include "panel_fixture.h"

namespace ovrin {
namespace {

using namespace std::chrono_literals;

class DirectAIViewModelTest : public PanelTest {
protected:
    DirectAIViewModel::Services chatServices() {
        return {.loop = loop, .ai = AIService(client), .prompts = prompts, .history = history};
    }

    void ask(const std::string& question) {
        chat.setDraft(question);
        chat.send();
        loop.runPosted();
    }
    void fail(const std::string& words) {
        http.openBody().fail(std::make_exception_ptr(Error(words)));
        loop.runPosted();
    }

    // "question|answer", with "…" where more is awaited.
    Events turns() const {
        Events lines;
        for (const auto& turn : chat.turns().value()) {
            lines.push_back(turn.question + "|" + turn.answer + (turn.isStreaming ? "…" : ""));
        }
        return lines;
    }

    DirectAIViewModel chat{"fr", chatServices()};
};

TEST_F(DirectAIViewModelTest, AnswersInTheStoredOrTheFirstPreferredLanguage) {
    EXPECT_EQ(DirectAIViewModel("zh-hant-TW", chatServices()).replyLanguage(), "zh-Hant");
    EXPECT_EQ(DirectAIViewModel("", chatServices()).replyLanguage(), "ja");
    willAnswer("Bonjour");
    ask("q");
    EXPECT_NE(lastSystemPrompt().find("Reply in French (BCP-47: fr)"), std::string::npos);
}

TEST_F(DirectAIViewModelTest, StreamsAnAnswerAndKeepsItInTheHistory) {
    willStream("4");
    chat.setDraft(" \n1 + 41?\t");
    EXPECT_TRUE(chat.canSend());
    chat.send();
    EXPECT_EQ(chat.draft().value(), "");
    EXPECT_TRUE(chat.isStreaming().value());
    EXPECT_EQ(turns(), Events{"1 + 41?|…"});
    loop.runPosted();
    EXPECT_EQ(lastRequest(), Events{"user: 1 + 41?"});
    push("2 é");
    EXPECT_EQ(turns(), Events{"1 + 41?|42 é…"});
    EXPECT_EQ(chat.streamedCharacterCount(), 4U);

    // Nothing is asked meanwhile, but the next question can be typed.
    chat.setDraft("next");
    EXPECT_FALSE(chat.canSend());
    chat.send();
    EXPECT_EQ(requests(), 1U);
    EXPECT_TRUE(history.records()->empty());

    finish();
    EXPECT_FALSE(chat.isStreaming().value());
    EXPECT_TRUE(chat.canSend());
    EXPECT_EQ(turns(), Events{"1 + 41?|42 é"});
    ASSERT_EQ(history.records()->size(), 1U);
    const HistoryRecord& record = *history.records()->front();
    EXPECT_EQ(record.sourceText, "1 + 41?");
    EXPECT_EQ(record.resultText, "42 é");
    EXPECT_EQ(record.recordType, "direct-ai");
}

TEST_F(DirectAIViewModelTest, ThoughtsAreTimedAndNoPartOfTheAnswer) {
    willStream("<think>hm");
    ask("q");
    EXPECT_EQ(chat.thinking().value(), "思考中");
    loop.advance(12s);
    EXPECT_EQ(chat.thinking().value(), "思考中 12 秒");
    EXPECT_EQ(turns(), Events{"q|…"});
    push(" hm</think>\n4");
    EXPECT_EQ(chat.thinking().value(), "");
    finish();
    EXPECT_EQ(history.records()->front()->resultText, "4");

    willStream("hm\n");
    ask("r");
    EXPECT_EQ(turns().back(), "r|hm\n…");
    push("</think>\n5");
    finish();
    EXPECT_EQ(turns().back(), "r|5") << "what had no opening tag is taken back";
    EXPECT_EQ(history.records()->front()->resultText, "5");

    willStream("<think>");
    ask("s");
    chat.cancel();
    EXPECT_EQ(chat.thinking().value(), "");
}

TEST_F(DirectAIViewModelTest, ABlankDraftAsksNothing) {
    for (const std::string blank : {"", " ", "\n\u3000\t"}) {
        ask(blank);
        EXPECT_FALSE(chat.canSend());
    }
    EXPECT_EQ(requests(), 0U);
    EXPECT_EQ(turns(), Events{});
}

TEST_F(DirectAIViewModelTest, SendsOnlyAnsweredTurnsAsHistory) {
    willAnswer("a1");
    ask("q1");
    willAnswer("");
    ask("q2");
    EXPECT_EQ(history.records()->size(), 1U);
    willStream("half");
    ask("q3");
    fail("the line broke");
    http.willFail("no route");
    ask("q4");
    EXPECT_EQ(turns(), (Events{"q1|a1", "q2|", "q3|half", "q4|"}));
    EXPECT_EQ(history.records()->size(), 1U);
    willAnswer("a5");
    ask("q5");
    EXPECT_EQ(lastRequest(), (Events{"user: q1", "assistant: a1", "user: q3", "assistant: half", "user: q5"}));
}

TEST_F(DirectAIViewModelTest, CancellingKeepsWhatCameAndSaysNothing) {
    willStream("half");
    ask("q");
    chat.cancel();
    EXPECT_EQ(turns(), Events{"q|half"});
    EXPECT_FALSE(chat.isStreaming().value());
    loop.runPosted();
    EXPECT_TRUE(http.isBodyDropped());
    push("more");
    EXPECT_EQ(turns(), Events{"q|half"});
    EXPECT_EQ(chat.errorMessage().value(), std::nullopt);
    EXPECT_TRUE(history.records()->empty());
}

TEST_F(DirectAIViewModelTest, ANewConversationForgetsTheOldOne) {
    http.willFail("no route");
    ask("q0");
    willStream("half");
    ask("q1");
    chat.setDraft("d");
    chat.newConversation();
    EXPECT_EQ(turns(), Events{});
    EXPECT_EQ(chat.draft().value(), "");
    EXPECT_EQ(chat.errorMessage().value(), std::nullopt);
    EXPECT_FALSE(chat.isStreaming().value());
    EXPECT_EQ(chat.streamedCharacterCount(), 0U);
    push("more");
    willAnswer("a2");
    ask("q2");
    EXPECT_EQ(lastRequest(), Events{"user: q2"});
    EXPECT_EQ(turns(), Events{"q2|a2"});
}

}  // namespace
}  // namespace ovrin
