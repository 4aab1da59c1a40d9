#include "settings/settings_store.h"

#include <filesystem>
#include <memory>
#include <semaphore>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "settings/first_launch.h"
#include "settings/settings_fixture.h"
#include "storage/preferences.h"

namespace ovrin {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;
using ::testing::StartsWith;
using namespace std::chrono_literals;

using State = SettingsStore::ConnectionState::Kind;
using Note = SettingsNote::Kind;

constexpr KeychainStatus locked = -25308;
constexpr const char* keyAccount = "deepseek-api-key";
constexpr const char* headersAccount = "model-custom-headers";
constexpr const char* okAnswer = R"({"choices":[{"message":{"role":"assistant","content":"OK"}}]})";

class SettingsStoreTest : public SettingsTest {
protected:
    SettingsStoreTest() {
        keychain.messages[locked] = "locked";
        variables["LANG"] = "de_DE.UTF-8";
    }

    void open() {
        store = std::make_unique<SettingsStore>(surroundings());
        settle();
        journal.take();
    }

    void fill() {
        store->editConnectionURL(" https://host/v1 ");
        store->editAPIKey(" sk-1 ");
        store->editModel(" m ");
        store->editMaxOutputTokens(" 100 ");
    }

    void addHeader(std::string name, std::string value) {
        store->addHeader();
        const Uuid id = store->customHeaders().value()->back().id;
        store->editHeaderName(id, std::move(name));
        store->editHeaderValue(id, std::move(value));
    }

    // No preference can be written from now on: their folder has become a file.
    void breakDisk() {
        std::filesystem::remove_all(directory.path() / "config");
        files::replaceFile(directory.path() / "config", "", files::Access::onlyUser);
    }

    const SettingsStore::ConnectionState& state() const { return store->connectionState().value(); }
    std::string stored(std::string_view key) const { return defaults.string(key).value_or("nothing"); }

    std::unique_ptr<SettingsStore> store;
};

TEST_F(SettingsStoreTest, LoadsEffectiveValuesAndSaysWhereTheyComeFrom) {
    variables["OPENAI_BASE_URL"] = "https://env/v1";
    variables["OVRIN_API_KEY"] = "sk-env";
    keychain.items[headersAccount] = R"({"zebra":"1","Äpfel":"2","bird":"3"})";
    defaults.setString(preference::targetLanguage, "IT-it");
    open();
    EXPECT_EQ(store->connectionURL().value().value(), "https://env/v1");
    EXPECT_EQ(store->connectionURL().note()->text, "由环境变量 OPENAI_BASE_URL 提供");
    EXPECT_EQ(store->apiKey().value().value(), "sk-env");
    EXPECT_EQ(store->apiKey().note()->text, "由环境变量 OVRIN_API_KEY 提供");
    std::vector<std::string> names;
    for (const HeaderEntry& row : store->customHeaders().value().value()) names.push_back(row.name);
    EXPECT_THAT(names, ElementsAre("Äpfel", "bird", "zebra")) << "the user's collation, not that of the bytes";
    EXPECT_EQ(store->languageOptions()->size(), 10U);
    EXPECT_EQ(store->languageOptions()->back().tag, store->targetLanguage().value().value());

    store->editTargetLanguage("en");
    store->saveGeneral();
    EXPECT_EQ(store->languageOptions()->size(), 9U);

    store->saveService();
    settle();
    EXPECT_EQ(keychain.items[keyAccount], "sk-env") << "a save writes what counts";
    EXPECT_EQ(stored(preference::connectionURL), "https://env/v1");
    store->editConnectionURL("https://mine/v1");
    store->saveService();
    settle();
    EXPECT_EQ(store->connectionURL().note()->text, "环境变量 OPENAI_BASE_URL 优先于此处的值");
}

TEST_F(SettingsStoreTest, SavesWhatTheFieldsHeldWhenTheButtonWasPressed) {
    defaults.setString(preference::legacyAPIKey, "sk-old");
    open();
    EXPECT_EQ(store->apiKey().value().value(), "sk-old");
    fill();
    addHeader("X-One", " 1 ");
    addHeader(" ", "");
    addHeader(" x-one ", "2");
    EXPECT_EQ(store->model().note()->kind, Note::unsaved);
    store->saveService();
    EXPECT_FALSE(store->canSaveService().value());
    store->editModel("later");
    settle();
    EXPECT_THAT(keychain.items, ElementsAre(Pair(keyAccount, "sk-1"), Pair(headersAccount, R"({"x-one":"2"})")));
    EXPECT_EQ(stored(preference::connectionURL), "https://host/v1");
    EXPECT_EQ(stored(preference::model), "m");
    EXPECT_EQ(defaults.integer(preference::maxOutputTokens), 100);
    EXPECT_FALSE(defaults.contains(preference::legacyAPIKey));
    EXPECT_EQ(store->model().note()->kind, Note::unsaved) << "edited since";
    EXPECT_EQ(store->apiKey().note()->kind, Note::none);
    EXPECT_EQ(store->customHeaders().note()->kind, Note::none);
    EXPECT_THAT(journal.take(), ElementsAre("toast checkmark: 服务配置已保存"));
    loop.advance(1s);
    store->savePrompts();
    loop.advance(1s);
    EXPECT_EQ(store->savedMessage().value(), "Prompt 已保存") << "the older message's end leaves the newer one";
    loop.advance(1s);
    EXPECT_EQ(store->savedMessage().value(), std::nullopt);
}

TEST_F(SettingsStoreTest, AFailureInTheMiddleOfSavingKeepsWhatWasWrittenBefore) {
    keychain.items[headersAccount] = R"({"a":"b"})";
    open();
    fill();
    store->removeHeader(store->customHeaders().value()->front().id);
    keychain.failures["remove"] = locked;
    store->saveService();
    settle();
    EXPECT_EQ(state(), (SettingsStore::ConnectionState{.kind = State::failed, .message = "locked"}));
    EXPECT_EQ(keychain.items[keyAccount], "sk-1");
    EXPECT_FALSE(defaults.contains(preference::connectionURL));
    EXPECT_EQ(store->connectionURL().note()->kind, Note::unsaved);
    EXPECT_THAT(journal.take(), IsEmpty());

    keychain.failures.clear();
    store->saveService();
    settle();
    EXPECT_EQ(state().kind, State::idle);
}

TEST_F(SettingsStoreTest, AKeyringThatCannotBeReadIsNeitherWrittenNorDeleted) {
    keychain.items[keyAccount] = "sk-secret";
    keychain.items[headersAccount] = R"({"a":"b"})";
    const auto before = keychain.items;
    keychain.failures["copyMatching"] = locked;
    open();
    EXPECT_EQ(state().message, "locked");
    EXPECT_TRUE(store->canReloadKeyring().value());
    store->editModel("m");
    store->saveService();
    settle();
    EXPECT_EQ(stored(preference::model), "m");
    store->testConnection();
    settle();
    EXPECT_EQ(state().message, "locked");
    EXPECT_EQ(keychain.items, before);
    EXPECT_THAT(keychain.calls, Not(Contains(Not(StartsWith("copyMatching")))));

    keychain.failures.clear();
    store->reloadKeyring();
    EXPECT_EQ(store->apiKey().note()->text, "正在读取密钥环…");
    EXPECT_FALSE(store->canTestConnection().value());
    settle();
    EXPECT_EQ(store->apiKey().value().value(), "sk-secret");
    EXPECT_EQ(state().kind, State::idle);
    EXPECT_FALSE(store->canReloadKeyring().value());
}

TEST_F(SettingsStoreTest, TheTestSavesFirstAndOnlyTheNewestCounts) {
    open();
    fill();
    http.willHang();
    http.willAnswer({.chunks = {okAnswer}});
    store->testConnection();
    EXPECT_EQ(state().kind, State::testing);
    EXPECT_TRUE(store->canTestConnection().value());
    settle();
    store->testConnection();
    settle();
    EXPECT_EQ(state().kind, State::success);
    EXPECT_EQ(http.abandonedRequests(), 1);
    EXPECT_EQ(stored(preference::model), "m");
    EXPECT_THAT(journal.take(), IsEmpty()) << "no toast";

    http.willFail("no route");
    store->testConnection();
    settle();
    EXPECT_THAT(state().message, HasSubstr("no route"));
    store->updateAPIStandard(ModelAPIStandard::anthropic);
    EXPECT_EQ(state().kind, State::idle);
    store->editConnectionURL("nowhere");
    store->testConnection();
    EXPECT_THAT(state().message, HasSubstr("URL")) << "at once, and nothing is sent";
    EXPECT_EQ(http.requests().size(), 3U);
}

TEST_F(SettingsStoreTest, ALocalServiceNeedsNoKeyAndNoneIsStored) {
    keychain.items[keyAccount] = "sk-remote";
    open();
    store->useLocalService({.name = "a", .connectionURL = "http://127.0.0.1:8080/v1", .models = {"small", "large"}});
    EXPECT_EQ(store->connectionURL().value().value(), "http://127.0.0.1:8080/v1");
    EXPECT_EQ(store->model().value().value(), "small");
    EXPECT_EQ(store->apiKey().value().value(), "");
    http.willAnswer({.chunks = {okAnswer}});
    store->testConnection();
    settle();
    EXPECT_EQ(state().kind, State::success);
    EXPECT_EQ(http.requests().back().headers.value("Authorization"), "Bearer local");
    EXPECT_EQ(http.requests().back().proxies, HTTPProxies::none);
    EXPECT_THAT(keychain.items, IsEmpty());
    EXPECT_EQ(store->apiKey().value().value(), "");
    EXPECT_EQ(config.modelAPIConfiguration().apiKey, "local");
    EXPECT_EQ(config.apiKey(), std::nullopt);
}

TEST_F(SettingsStoreTest, ListsTheModelsOfTheDraftOrSaysWhyNot) {
    using Choices = SettingsStore::ModelChoices;
    open();
    fill();
    std::string many;
    for (int i = 0; i < 10'000; ++i) many += (i == 0 ? "" : ",") + (R"({"id":"m)" + std::to_string(i) + "\"}");
    http.willAnswer({.chunks = {R"({"data":[)" + many + "]}"}});
    store->listModels();
    EXPECT_EQ(store->modelChoices()->kind, Choices::Kind::loading);
    settle();
    EXPECT_EQ(store->modelChoices()->names.size() + store->modelChoices()->omitted, 10'000U);
    EXPECT_EQ(store->modelChoices()->names.at(1), "m1");
    store->editAPIKey("other");
    EXPECT_EQ(store->modelChoices().value(), Choices()) << "another key may see other models";

    const auto failureOf = [&](FakeHTTPClient::Answer answer) {
        http.willAnswer(std::move(answer));
        store->listModels();
        settle();
        EXPECT_EQ(store->modelChoices().value(), Choices());
        return store->model().error().value();
    };
    EXPECT_EQ(failureOf({.chunks = {"<html>"}}), "无法列出模型：服务返回的不是模型列表。");
    EXPECT_EQ(failureOf({.chunks = {R"({"data":[]})"}}), "无法列出模型：此服务没有模型。");
    EXPECT_EQ(failureOf({.statusCode = 404, .chunks = {"<html>"}}), "无法列出模型：此服务不提供模型列表（HTTP 404）。");
    EXPECT_EQ(failureOf({.statusCode = 401, .chunks = {R"({"error":{"message":"Bad key"}})"}}),
              "无法列出模型：Bad key");
    EXPECT_THAT(failureOf({.chunks = std::vector<std::string>(10, std::string(1 << 20, ' '))}), HasSubstr("过大"));
    http.willHang();
    store->listModels();
    settle();
    store->editConnectionURL("https://elsewhere/v1");
    settle();
    EXPECT_EQ(http.abandonedRequests(), 1);
    store->editConnectionURL("nowhere");
    store->listModels();
    EXPECT_THAT(store->model().error().value(), HasSubstr("URL"));
}

TEST_F(SettingsStoreTest, AResetWinsOverATestWhoseSaveStillRuns) {
    open();
    fill();
    std::binary_semaphore slowKeyring{0};
    worker.post([&](const std::stop_token&) { slowKeyring.acquire(); });
    store->testConnection();
    store->resetService();
    EXPECT_FALSE(store->canTestConnection().value());
    EXPECT_EQ(state().kind, State::idle);
    slowKeyring.release();
    settle();
    EXPECT_THAT(http.requests(), IsEmpty());
    EXPECT_THAT(keychain.items, IsEmpty());
    EXPECT_FALSE(defaults.contains(preference::model));
    EXPECT_EQ(store->model().value().value(), "gpt-5.2");
    EXPECT_EQ(store->apiKey().value().value(), "");
    EXPECT_EQ(store->apiKey().note()->kind, Note::none);
    EXPECT_EQ(state().kind, State::idle);
    EXPECT_THAT(journal.take(), ElementsAre("toast checkmark: 模型配置已恢复默认"));

    fill();
    keychain.failures["remove"] = locked;
    store->resetService();
    settle();
    EXPECT_EQ(state().message, "locked");
    EXPECT_EQ(store->model().value().value(), " m ") << "fields unchanged";
}

TEST_F(SettingsStoreTest, TheStandardBringsItsDefaultsUnlessTheUserHasHisOwn) {
    open();
    store->editConnectionURL(" https://api.openai.com/v1// ");
    store->updateAPIStandard(ModelAPIStandard::anthropic);
    EXPECT_EQ(store->connectionURL().value().value(), "https://api.anthropic.com/v1");
    EXPECT_EQ(store->model().value().value(), "claude-sonnet-4-6");
    store->updateAPIStandard(ModelAPIStandard::openAICompatible);
    EXPECT_EQ(store->connectionURL().value().value(), "https://api.openai.com/v1");
    EXPECT_EQ(store->model().value().value(), "gpt-5.2");
    store->editConnectionURL("https://mine");
    store->editModel("mine");
    store->updateAPIStandard(ModelAPIStandard::anthropic);
    EXPECT_EQ(store->connectionURL().value().value(), "https://mine");
    EXPECT_EQ(store->model().value().value(), "mine");
    EXPECT_FALSE(defaults.contains(preference::apiStandard));
}

TEST_F(SettingsStoreTest, FieldsFollowChangesFromOutsideAndDraftsStay) {
    keychain.items[keyAccount] = "sk-1";
    open();
    store->editModel("draft");
    defaults.setString(preference::model, "elsewhere");
    defaults.setString(preference::connectionURL, "https://elsewhere");
    keychain.items[keyAccount] = "sk-2";
    loginItem.isOn = true;
    store->reload();
    EXPECT_FALSE(store->isLoadingKeyring().value()) << "who types is not disturbed";
    settle();
    EXPECT_EQ(store->connectionURL().value().value(), "https://elsewhere");
    EXPECT_EQ(store->apiKey().value().value(), "sk-2");
    EXPECT_TRUE(store->launchAtLogin().value().value());
    EXPECT_EQ(store->model().value().value(), "draft");
    EXPECT_EQ(store->model().note()->text, "已在别处更改");
    store->editModel("elsewhere");
    EXPECT_EQ(store->model().note()->kind, Note::none);
}

TEST_F(SettingsStoreTest, SomeChoicesApplyAtOnceAndTheLoginSwitchWaits) {
    open();
    store->updateAppearanceMode(AppAppearanceMode::dark);
    store->updateEntranceIcon(EntranceIconStyle::dark);
    store->updateResultWindowAlwaysOnTop(true);
    store->editLaunchAtLogin(true);
    EXPECT_THAT(journal.take(), ElementsAre("apply dark", "EntranceIconDark", "level"));
    EXPECT_EQ(stored(preference::appearanceMode), "dark");
    EXPECT_TRUE(defaults.boolean(preference::resultWindowAlwaysOnTop));
    EXPECT_EQ(store->launchAtLogin().note()->kind, Note::unsaved);

    loginItem.failure = "no autostart";
    store->saveGeneral();
    EXPECT_THAT(journal.take(), ElementsAre("toast exclamationmark.triangle: no autostart"));
    EXPECT_EQ(store->launchAtLogin().error().value(), "no autostart");
    EXPECT_EQ(state().message, "no autostart");
    EXPECT_FALSE(store->launchAtLogin().value().value()) << "back to the live state";
    EXPECT_FALSE(defaults.contains(preference::launchAtLogin));

    loginItem.failure.clear();
    store->editLaunchAtLogin(true);
    store->saveGeneral();
    EXPECT_THAT(journal.take(), ElementsAre("register", "toast checkmark: 通用设置已保存"));
    EXPECT_TRUE(defaults.boolean(preference::launchAtLogin));
}

TEST_F(SettingsStoreTest, WhatCannotBeStoredIsToldWhereItWasChosen) {
    open();
    breakDisk();
    store->updateEntranceIcon(EntranceIconStyle::dark);
    EXPECT_EQ(store->entranceIconStyle().value().value(), EntranceIconStyle::light);
    EXPECT_FALSE(store->entranceIconStyle().error()->empty());
    store->updateAppearanceMode(AppAppearanceMode::dark);
    EXPECT_EQ(store->appearanceMode().value().value(), AppAppearanceMode::system);
    EXPECT_THAT(journal.take(), Not(Contains("apply dark")));
    store->editTranslationPrompt("draft");
    store->savePrompts();
    EXPECT_FALSE(store->translationPrompt().error()->empty());
    EXPECT_EQ(store->translationPrompt().value().value(), "draft") << "text is not lost";
    EXPECT_EQ(state().kind, State::failed);
    EXPECT_THAT(journal.take(), ElementsAre(StartsWith("toast exclamationmark.triangle: ")));
}

TEST_F(SettingsStoreTest, TheFirstLaunchOpensTheServicePageUnlessAServiceIsNamed) {
    EXPECT_EQ(takeFirstLaunch(defaults, config), SettingsSection::service);
    EXPECT_EQ(takeFirstLaunch(defaults, config), std::nullopt);
    defaults.remove({preference::didDismissWelcome});
    variables["DEEPSEEK_API_KEY"] = "sk-1";
    EXPECT_EQ(takeFirstLaunch(defaults, config), SettingsSection::general);
    EXPECT_THAT(keychain.calls, IsEmpty());
}

}  // namespace
}  // namespace ovrin
