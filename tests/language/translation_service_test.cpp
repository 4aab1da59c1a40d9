#include "language/translation_service.h"

#include <chrono>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "base/virtual_loop.h"
#include "fakes/fake_http_client.h"
#include "fakes/fake_language_identifier.h"

namespace ovrin {
namespace {

using std::chrono::seconds;

constexpr Timestamp noon = Timestamp(seconds(1'700'000'000));

class TranslationServiceTest : public ::testing::Test {
protected:
    nlohmann::json sentMessages() const { return nlohmann::json::parse(http.requests().back().body).at("messages"); }

    VirtualLoop loop;
    FakeHTTPClient http;
    FakeLanguageIdentifier identifier;
    std::string override;
    ModelClient client{loop, http, [] {
                           return finished(ModelAPIConfiguration{.connectionURL = "https://h.example",
                                                                 .apiKey = "k",
                                                                 .model = "m",
                                                                 .customHeaders = {},
                                                                 .maxOutputTokens = 1});
                       }};
    TranslationService service{client, identifier, [this] { return override; }, [] { return noon; }};
    TaskSlot task{loop};
};

TEST_F(TranslationServiceTest, SwitchesTheTargetWhenTheTextIsInItAlready) {
    const auto target = TranslationService::effectiveTargetLanguage;
    EXPECT_EQ(target("zh-Hans", "zh-Hans-CN"), "en");
    EXPECT_EQ(target("ja", "ja"), "en");
    EXPECT_EQ(target("en", "en-US"), "zh-Hans");
    EXPECT_EQ(target("zh-Hant", "zh-Hans"), "zh-Hans");
    EXPECT_EQ(target("zh-Hans", "zh-Hant"), "zh-Hant");
    EXPECT_EQ(target("fr", "en-US"), "en-US");
    EXPECT_EQ(target(std::nullopt, "zh-Hans-CN"), "zh-Hans-CN");
}

TEST_F(TranslationServiceTest, WritesTheBuiltInPrompt) {
    const auto messages = service.messages(" text\n", "fr");
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0], (DeepSeek::Message{
                               "system",
                               "You are a precise professional translator. Translate the user's text into French "
                               "(BCP-47: fr). Preserve paragraphs, formatting, tone, names, numbers, and code. Return "
                               "only the translation."}));
    EXPECT_EQ(messages[1], (DeepSeek::Message{"user", " text\n"}));
    EXPECT_NE(service.messages("t", "xx-Nope!").front().content.find("into xx-Nope! (BCP-47: xx-Nope!)"),
              std::string::npos);
}

TEST_F(TranslationServiceTest, FillsInTheUsersPrompt) {
    override = "{tag}: {language} {Tag} {} {tag}{tag}";
    EXPECT_EQ(service.messages("t", "fr").front().content, "fr: French {Tag} {} frfr");
    override = " \n";
    EXPECT_EQ(service.messages("t", "fr").front().content, " \n");
}

Task<void> keep(Task<TranslationResult> translation, std::optional<TranslationResult>& result,
                std::optional<std::string>& error) {
    try {
        TranslationResult finished = co_await std::move(translation);
        result = std::move(finished);
    } catch (const Error& failure) {
        error = failure.errorDescription();
    }
}

TEST_F(TranslationServiceTest, CollectsATranslation) {
    identifier.answer = "en";
    http.willAnswer({.chunks = {R"({"choices":[{"message":{"role":"assistant","content":" 你好\n"}}]})"}});
    std::optional<TranslationResult> result;
    std::optional<std::string> error;
    task.replace(keep(service.translate(" hello ", "en-US"), result, error));
    loop.runPosted();
    ASSERT_TRUE(result);
    EXPECT_EQ(result->sourceText, " hello ");
    EXPECT_EQ(result->translatedText, " 你好\n");
    EXPECT_EQ(result->sourceLanguage, "en");
    EXPECT_EQ(result->targetLanguage, "zh-Hans");
    EXPECT_EQ(result->createdAt, noon);
    EXPECT_NE(result->id, Uuid());
    EXPECT_EQ(sentMessages()[1]["content"], " hello ");

    http.willAnswer({.statusCode = 429});
    task.replace(keep(service.translate("hello", "en-US"), result, error));
    loop.runPosted();
    EXPECT_EQ(error, "请求失败（HTTP 429）");
}

Task<void> append(AsyncStream<AnswerChange> stream, std::string& text) {
    while (true) {
        const std::optional<AnswerChange> change = co_await stream.next();
        if (!change) break;
        change->applyTo(text);
    }
}

TEST_F(TranslationServiceTest, DoesNotDetectASingleCharacter) {
    identifier.answer = "zh-Hans";
    http.willAnswer({});
    std::string text;
    task.replace(append(service.stream(" 好\n", "zh-Hans"), text));
    loop.runPosted();
    EXPECT_EQ(sentMessages()[0]["content"], service.messages("", "zh-Hans").front().content);
}

TEST(TranslationResult, KeepsItsSerialisedForm) {
    TranslationResult result{.id = *Uuid::parse("E621E1F8-C36C-495A-93FC-0C247A3E6E5F"),
                             .sourceText = "a",
                             .translatedText = "b",
                             .sourceLanguage = "en",
                             .targetLanguage = "fr",
                             .createdAt = noon};
    const auto json = nlohmann::json::parse(
        R"({"id":"E621E1F8-C36C-495A-93FC-0C247A3E6E5F","sourceText":"a","translatedText":"b","sourceLanguage":"en",
            "targetLanguage":"fr","createdAt":"2023-11-14T22:13:20Z"})");
    EXPECT_EQ(result.toJson(DateForm::iso8601), json);
    for (const DateForm form : {DateForm::iso8601, DateForm::secondsSinceReferenceDate}) {
        EXPECT_EQ(TranslationResult::fromJson(result.toJson(form), form), result);
    }
    result.sourceLanguage.reset();
    EXPECT_FALSE(result.toJson(DateForm::iso8601).contains("sourceLanguage"));
    EXPECT_EQ(TranslationResult::fromJson(result.toJson(DateForm::iso8601), DateForm::iso8601), result);
    EXPECT_EQ((std::unordered_set<TranslationResult>{result, result}).size(), 1U);
    for (const char* key : {"id", "sourceText", "translatedText", "targetLanguage", "createdAt"}) {
        auto broken = json;
        broken.erase(key);
        EXPECT_THROW(TranslationResult::fromJson(broken, DateForm::iso8601), Error) << key;
    }
    auto broken = json;
    broken["sourceLanguage"] = 1;
    EXPECT_THROW(TranslationResult::fromJson(broken, DateForm::iso8601), Error);
}

}  // namespace
}  // namespace ovrin
