#include "model/thinking_filter.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace ovrin {
namespace {

using Kind = AnswerChange::Kind;
using Changes = std::vector<AnswerChange>;

// What is there of an answer that comes in pieces of so many bytes.
std::string answerOf(const std::string& sent, std::size_t pieceSize) {
    ThinkingFilter filter;
    Changes changes;
    for (std::size_t at = 0; at < sent.size(); at += pieceSize) filter.feed(sent.substr(at, pieceSize), changes);
    filter.finish(changes);
    std::string answer;
    for (const AnswerChange& change : changes) change.applyTo(answer);
    return answer;
}

TEST(ThinkingFilter, GivesTheSameAnswerHoweverItIsCut) {
    struct Row {
        std::string sent;
        std::string answer;
    };
    const std::string fenced = "See:\n```html\nA\n</think>\nB\n```\nC";
    const std::string inner = "~~~~\n```\n~~~\n</think>\n~~~~\n";
    const std::string longText(std::size_t{70} << 10U, 'x');
    for (const auto& [sent, answer] : std::vector<Row>{
             {"<think>\nhm </thin\n</think>\n\n Hello\n", "Hello\n"},
             {"\n <think></think>Hello </think>\n<think>", "Hello </think>\n<think>"},
             {"<think>hm, without an end", ""},
             {"<think>hm</think>\n", ""},
             {"First I look.\nThen:\n </think> \r\n\nHello\n</think>\nagain", "Hello\n</think>\nagain"},
             {"</think>\nHello", "Hello"},
             {"no answer follows\n</think>\n", ""},
             {"no answer follows\n</think> ", ""},
             {"The tag </think>\nends it", "The tag </think>\nends it"},
             {"</think> ends it\n", "</think> ends it\n"},
             {"`<think>` begins\n</thinking>\n", "`<think>` begins\n</thinking>\n"},
             {"<thin", "<thin"},
             {"  \n", "  \n"},
             {fenced, fenced},
             {inner + "</think>\nHello", "Hello"},
             {longText + "\n</think>\nB", longText + "\n</think>\nB"},
         }) {
        for (const std::size_t size : {std::size_t{1}, std::size_t{2}, std::size_t{5}, sent.size()}) {
            EXPECT_EQ(answerOf(sent, size), answer) << sent.substr(0, 80) << " in pieces of " << size;
        }
        EXPECT_EQ(withoutThinking(sent), answer);
    }
}

TEST(ThinkingFilter, TellsOfThoughtsOnceAndKeepsNoTextBack) {
    ThinkingFilter filter;
    Changes changes;
    for (const char* piece : {"", "", "<th", "ink>", "hm", "</think>\n", "Good"}) filter.feed(piece, changes);
    EXPECT_EQ(changes, (Changes{{.kind = Kind::thinking}, {.text = "Good"}}));

    ThinkingFilter taking;
    changes.clear();
    taking.feed("hm", changes);
    taking.feed(" hm\n<", changes);
    EXPECT_EQ(changes, (Changes{{.text = "hm"}, {.text = " hm\n"}}));
    changes.clear();
    taking.feed("/think>\n\nGo", changes);
    taking.feed("od", changes);
    EXPECT_EQ(changes, (Changes{{.kind = Kind::replaced}, {.text = "Go"}, {.text = "od"}}));
}

}  // namespace
}  // namespace ovrin
