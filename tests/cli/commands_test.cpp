// recognize, history and config over fakes and files of the test's own.
#include <csignal>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "base/run_loop.h"
#include "cli/channels.h"
#include "cli/config_command.h"
#include "cli/doctor_command.h"
#include "cli/history_command.h"
#include "cli/recognize_command.h"
#include "fakes/fake_keychain.h"
#include "fakes/fake_ocr_engine.h"
#include "fakes/temporary_directory.h"
#include "platform/image_decoder.h"
#include "storage/app_config.h"
#include "storage/defaults_store.h"
#include "storage/history_store.h"
#include "storage/keychain_store.h"
#include "storage/preferences.h"

namespace ovrin::cli {
namespace {

using testing::HasSubstr;
using testing::Not;

// Takes every file for a picture that doesn't begin with "bad".
class FakeImageDecoder : public ImageDecoder {
public:
    Image decode(std::span<const std::byte> bytes) const override {
        const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        if (text.starts_with("bad")) throw Error("The picture is damaged.");
        return {1, 1, std::vector<std::uint8_t>(4)};
    }
};

std::string messageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Error& error) {
        return error.errorDescription();
    }
    return {};
}

class Commands : public testing::Test {
protected:
    std::string file(const std::string& name, const std::string& bytes) const {
        const auto path = directory_.path() / name;
        std::ofstream(path) << bytes;
        return path;
    }
    void engineReads(const std::string& text) {
        engine_.result.succeed({.paragraphs = {{.text = text, .confidence = 1.0F, .normalizedBoundingBox = {}}},
                                .detectedLanguage = "en"});
    }
    int recognizeThem(const Recognize& command) {
        return recognize(command, {.terminal = channels_.terminal,
                                   .loop = loop_,
                                   .decoder = decoder_,
                                   .engine = engine_,
                                   .history = [this]() -> HistoryStore& {
                                       isHistoryOpened_ = true;
                                       return history_;
                                   },
                                   .stop = {}});
    }
    std::string output() { return channels_.output.drained(); }

    TemporaryDirectory directory_;
    Channels channels_;
    RunLoop loop_;
    Journal journal_;
    FakeImageDecoder decoder_;
    FakeOCREngine engine_{journal_};
    Timestamp now_{std::chrono::seconds(1'700'000'000)};
    HistoryStore history_{directory_.path() / "history.json", text::caseRules(Environment()), [this] { return now_; }};
    bool isHistoryOpened_ = false;
    DefaultsStore defaults_{directory_.path() / "preferences.json"};
    FakeKeychain secrets_;
    KeychainStore keychain_{secrets_};
};

TEST_F(Commands, RecognizeGoesOnAfterABrokenPicture) {
    engineReads("first");
    engineReads("third");
    channels_.type("a picture");
    const std::string broken = file("b.png", "bad");
    EXPECT_EQ(recognizeThem({.images = {file("a.png", "good"), broken, directory_.path() / "none.png", "-"}}), 1);
    EXPECT_EQ(output(), "first\n\nthird\n");
    EXPECT_EQ(channels_.error.drained(), broken + ": The picture is damaged.\n" +
                                             (directory_.path() / "none.png").string() +
                                             ": No such file or directory\n");
    EXPECT_FALSE(isHistoryOpened_);
}

TEST_F(Commands, RecognizePrintsOneJsonRecordALine) {
    engineReads("two\nlines");
    engineReads("other");
    EXPECT_EQ(recognizeThem({.images = {file("a.png", "1"), file("b.png", "2")}, .form = OutputForm::json}), 0);
    std::istringstream lines(output());
    std::vector<std::string> texts;
    for (std::string line; std::getline(lines, line);)
        texts.push_back(nlohmann::json::parse(line).at("paragraphs").at(0).at("text"));
    EXPECT_EQ(texts, (std::vector<std::string>{"two\nlines", "other"}));
}

TEST_F(Commands, RecognizeSavesWhenAsked) {
    engineReads("kept");
    EXPECT_EQ(recognizeThem({.images = {file("a.png", "1")}, .history = HistoryEntry::save}), 0);
    ASSERT_EQ(history_.records().value().size(), 1U);
    EXPECT_EQ(history_.records().value().front()->sourceText, "kept");
    EXPECT_EQ(history_.records().value().front()->recordType, "capture-ocr");
}

TEST_F(Commands, RecognizeStopsWhenNobodyReadsOn) {
    std::signal(SIGPIPE, SIG_IGN);
    engineReads("first");
    channels_.output.closeReading();
    EXPECT_THROW(recognizeThem({.images = {file("a.png", "1"), file("b.png", "2")}}), OutputClosed);
    EXPECT_EQ(journal_.events().size(), 1U);
}

TEST_F(Commands, HistoryListsNewestFirstAndSearches) {
    history_.save({.sourceText = "older", .resultText = "one\ntwo", .recordType = historyRecordType::directAI});
    now_ += std::chrono::minutes(1);
    history_.save({.sourceText = "newer", .resultText = std::nullopt, .recordType = historyRecordType::captureOCR});
    EXPECT_EQ(listHistory({}, history_, channels_.terminal), 0);
    EXPECT_EQ(listHistory({.query = "absent"}, history_, channels_.terminal), 0);
    const std::string text = output();
    EXPECT_LT(text.find("    newer\n"), text.find("    older\n  > one\n  > two\n"));

    Channels others;
    EXPECT_EQ(listHistory({.query = "OLD", .form = OutputForm::json}, history_, others.terminal), 0);
    EXPECT_EQ(nlohmann::json::parse(others.output.drained()).at(0).at("sourceText"), "older");
}

TEST_F(Commands, DoctorFailsWhereTheScreenCannotBeCaptured) {
    const Capability tray{.name = "tray", .title = "", .isAvailable = true, .detail = "StatusNotifierItem"};
    Capability capture{.name = "capture", .title = "", .isAvailable = false, .detail = "no display"};
    EXPECT_EQ(showCapabilities({}, {tray, capture}, channels_.terminal), 1);
    EXPECT_EQ(output(), "tray     yes  StatusNotifierItem\ncapture  no   no display\n");

    Channels others;
    capture = {.name = "capture", .title = "", .isAvailable = true, .detail = "X11"};
    EXPECT_EQ(showCapabilities({.form = OutputForm::json}, {tray, capture}, others.terminal), 0);
    EXPECT_EQ(nlohmann::json::parse(others.output.drained()).at(1).at("mechanism"), "X11");
}

TEST_F(Commands, ConfigKeepsTheTypeOfEachPreference) {
    changePreference({.key = "ovrin.launchAtLogin", .value = "true"}, defaults_);
    changePreference({.key = "ovrin.maxOutputTokens", .value = "8192"}, defaults_);
    changePreference({.key = "ovrin.targetLanguage", .value = " ZH-hant-TW"}, defaults_);
    changePreference({.key = "ovrin.connectionURL", .value = " https://h.example/v1\n"}, defaults_);
    changePreference({.key = "ovrin.model", .value = " some model "}, defaults_);
    changePreference({.key = "KeyboardShortcuts_ovrin.captureOCR", .value = "x"}, defaults_);
    EXPECT_TRUE(defaults_.boolean(preference::launchAtLogin));
    EXPECT_EQ(defaults_.integer(preference::maxOutputTokens), 8192);
    showPreferences({}, defaults_, channels_.terminal);
    EXPECT_EQ(output(),
              "ovrin.targetLanguage=zh-Hant\novrin.connectionURL=https://h.example/v1\novrin.model=some model\n"
              "ovrin.maxOutputTokens=8192\novrin.launchAtLogin=true\n");
}

TEST_F(Commands, ConfigRefusesWhatNothingReads) {
    const auto refusal = [&](const std::string& key, const std::string& value) {
        return messageOf([&] { changePreference({.key = key, .value = value}, defaults_); });
    };
    EXPECT_EQ(refusal("ovrin.colour", "red"), "there is no preference ovrin.colour");
    EXPECT_EQ(refusal("KeyboardShortcuts_ovrin.none", "x"), "there is no preference KeyboardShortcuts_ovrin.none");
    EXPECT_EQ(refusal("ovrin.launchAtLogin", "1"), "ovrin.launchAtLogin takes true or false");
    EXPECT_EQ(refusal("ovrin.maxOutputTokens", "12x"), "ovrin.maxOutputTokens takes a whole number");
    EXPECT_EQ(refusal("ovrin.maxOutputTokens", "0"), "最大输出 Token 必须大于 0。");
    EXPECT_EQ(refusal("ovrin.apiStandard", "openai"), "ovrin.apiStandard takes one of: openai-compatible anthropic");
    EXPECT_NE(refusal("ovrin.targetLanguage", " "), "");
    EXPECT_THAT(refusal("ovrin.apiKey", "sk-secret"),
                testing::AllOf(HasSubstr("set-key"), Not(HasSubstr("sk-secret"))));
    EXPECT_EQ(messageOf([&] { removePreference({.key = "ovrin.colour"}, defaults_); }),
              "there is no preference ovrin.colour");
    EXPECT_EQ(messageOf([&] { showPreferences({.key = "ovrin.model"}, defaults_, channels_.terminal); }),
              "ovrin.model is not set");
    EXPECT_FALSE(std::filesystem::exists(directory_.path() / "preferences.json"));
}

TEST_F(Commands, ConfigStoresTheKeyAndNeverShowsOne) {
    channels_.type("  sk-secret \n");
    EXPECT_EQ(storeAPIKey(keychain_, channels_.terminal, {}), 0);
    EXPECT_EQ(secrets_.items.at(std::string(AppConfig::apiKeyAccount)), "sk-secret");

    defaults_.setString(preference::legacyAPIKey, "sk-secret");
    showPreferences({.key = "ovrin.apiKey"}, defaults_, channels_.terminal);
    showPreferences({}, defaults_, channels_.terminal);
    EXPECT_EQ(output(), "(not shown)\novrin.apiKey=(not shown)\n");

    EXPECT_EQ(removeAPIKey(keychain_), 0);
    EXPECT_TRUE(secrets_.items.empty());
    Channels nothing;
    nothing.type("\n");
    EXPECT_EQ(messageOf([&] { storeAPIKey(keychain_, nothing.terminal, {}); }),
              "no API key was given on standard input");
}

}  // namespace
}  // namespace ovrin::cli
