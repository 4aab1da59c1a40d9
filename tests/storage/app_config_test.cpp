#include "storage/app_config.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/fake_keychain.h"
#include "fakes/temporary_directory.h"
#include "storage/preferences.h"

namespace ovrin {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;
using ::testing::Pair;

class AppConfigTest : public ::testing::Test {
protected:
    TemporaryDirectory directory;
    Environment::Variables variables;
    FakeKeychain keychain;
    KeychainStore secrets{keychain};
    DefaultsStore defaults{directory.path() / "preferences.json"};
    AppConfig config{defaults, [this] { return Environment(variables); }, secrets};

    // The same stores after a restart: nothing of the keychain is known yet.
    KeychainStore freshSecrets{keychain};
    AppConfig restarted{defaults, [this] { return Environment(variables); }, freshSecrets};
};

TEST_F(AppConfigTest, EverythingHasADefault) {
    const ModelAPIConfiguration configuration = config.modelAPIConfiguration();
    EXPECT_EQ(configuration, (ModelAPIConfiguration{.standard = ModelAPIStandard::openAICompatible,
                                                    .connectionURL = "https://api.openai.com/v1",
                                                    .apiKey = "",
                                                    .model = "gpt-5.2",
                                                    .customHeaders = {},
                                                    .maxOutputTokens = 4096}));
    EXPECT_EQ(config.appearanceMode(), AppAppearanceMode::system);
    EXPECT_EQ(config.entranceIconStyle(), EntranceIconStyle::light);
    EXPECT_EQ(config.targetLanguage(), "zh-Hans");
    EXPECT_EQ(config.apiKey(), std::nullopt);
}

TEST_F(AppConfigTest, StoredValuesAreReadAsTheyAre) {
    defaults.setString(preference::apiStandard, "anthropic");
    defaults.setString(preference::model, "  m  ");
    defaults.setInteger(preference::maxOutputTokens, -1);
    EXPECT_EQ(config.apiStandard(), ModelAPIStandard::anthropic);
    EXPECT_EQ(config.connectionURL(), "https://api.openai.com/v1");
    EXPECT_EQ(config.modelAPIConfiguration().model, "  m  ");
    EXPECT_EQ(config.modelAPIConfiguration().maxOutputTokens, 4096);
    defaults.setInteger(preference::maxOutputTokens, 1);
    EXPECT_EQ(config.modelAPIConfiguration().maxOutputTokens, 1);
    defaults.setString(preference::connectionURL, "");
    EXPECT_EQ(config.connectionURL(), "");
    defaults.setString(preference::apiStandard, "Anthropic");
    EXPECT_EQ(config.apiStandard(), ModelAPIStandard::openAICompatible);
    defaults.setString(preference::entranceIconStyle, "dark");
    EXPECT_EQ(config.entranceIconStyle(), EntranceIconStyle::dark);
}

TEST_F(AppConfigTest, OnlyAnExactStandardOverrides) {
    defaults.setString(preference::apiStandard, "openai-compatible");
    variables["OVRIN_API_STANDARD"] = "Anthropic";
    EXPECT_EQ(config.apiStandard(), ModelAPIStandard::openAICompatible);
    variables["OVRIN_API_STANDARD"] = "anthropic";
    EXPECT_EQ(config.apiStandard(), ModelAPIStandard::anthropic);
}

TEST_F(AppConfigTest, TheConnectionFollowsTheStandardInForce) {
    variables = {{"ANTHROPIC_BASE_URL", "a"}, {"OPENAI_BASE_URL", "o"}, {"DEEPSEEK_BASE_URL", "d"},
                 {"ANTHROPIC_API_KEY", "ka"}, {"OPENAI_API_KEY", "ko"}, {"DEEPSEEK_API_KEY", "kd"}};
    defaults.setString(preference::connectionURL, "stored");
    EXPECT_EQ(config.connectionURL(), "o");
    EXPECT_THAT(config.apiKey(), Optional(std::string("ko")));
    variables["OPENAI_BASE_URL"] = variables["OPENAI_API_KEY"] = "";
    EXPECT_EQ(config.connectionURL(), "d");
    EXPECT_THAT(config.apiKey(), Optional(std::string("kd")));
    variables["OVRIN_API_STANDARD"] = "anthropic";
    EXPECT_EQ(config.connectionURL(), "a");
    EXPECT_THAT(config.apiKey(), Optional(std::string("ka")));
    variables["ANTHROPIC_BASE_URL"] = variables["ANTHROPIC_API_KEY"] = "";
    EXPECT_EQ(config.connectionURL(), "stored");
    EXPECT_EQ(config.apiKey(), std::nullopt);
    variables["OVRIN_BASE_URL"] = " first ";
    variables["OVRIN_API_KEY"] = "k1";
    EXPECT_EQ(config.connectionURL(), " first ");
    EXPECT_THAT(config.apiKey(), Optional(std::string("k1")));
    EXPECT_EQ(config.modelAPIConfiguration().apiKey, "k1");
}

TEST_F(AppConfigTest, TheKeyComesFromTheKeychainBeforeTheLegacyPreference) {
    defaults.setString(preference::legacyAPIKey, " legacy ");
    EXPECT_THAT(config.apiKey(), Optional(std::string(" legacy ")));
    keychain.items["deepseek-api-key"] = "kept";
    EXPECT_THAT(restarted.apiKey(), Optional(std::string("kept")));
    secrets.writeString("", "deepseek-api-key");
    EXPECT_THAT(config.apiKey(), Optional(std::string(" legacy ")));
}

TEST_F(AppConfigTest, AKeychainThatFailsCountsAsEmpty) {
    keychain.failures["copyMatching"] = -25308;
    EXPECT_EQ(config.apiKey(), std::nullopt);
    EXPECT_THAT(config.customHeaders(), IsEmpty());
}

TEST_F(AppConfigTest, CustomHeadersAreAnObjectOfTexts) {
    config.saveCustomHeaders({{"X-B", "2"}, {"X-A", "中\""}});
    EXPECT_EQ(keychain.items["model-custom-headers"], R"({"X-A":"中\"","X-B":"2"})");
    EXPECT_THAT(restarted.customHeaders(), ElementsAre(Pair("X-A", "中\""), Pair("X-B", "2")));
    config.saveCustomHeaders({});
    EXPECT_THAT(keychain.items, IsEmpty());
    EXPECT_THAT(config.customHeaders(), IsEmpty());
    for (const char* stored : {"{", "[]", "null", R"({"X-A":"1","X-B":2})"}) {
        secrets.writeString(stored, "model-custom-headers");
        EXPECT_THAT(config.customHeaders(), IsEmpty()) << stored;
    }
}

TEST_F(AppConfigTest, ResettingForgetsTheModelConnectionOnly) {
    for (const auto& known : allPreferences) defaults.setString(known.key, "1");
    keychain.items = {{"deepseek-api-key", "k"}, {"model-custom-headers", "{}"}};
    config.resetModelConfiguration();
    EXPECT_THAT(keychain.items, IsEmpty());
    for (const auto key : {preference::apiStandard, preference::connectionURL, preference::model,
                           preference::maxOutputTokens, preference::legacyAPIKey}) {
        EXPECT_FALSE(defaults.contains(key)) << key;
    }
    for (const auto key : {preference::translationPrompt, preference::targetLanguage, preference::appearanceMode}) {
        EXPECT_TRUE(defaults.contains(key)) << key;
    }
}

TEST_F(AppConfigTest, ResettingStopsAtTheFirstFailure) {
    defaults.setString(preference::model, "m");
    keychain.failures["remove"] = -1;
    EXPECT_THROW(config.resetModelConfiguration(), KeychainStore::KeychainError);
    EXPECT_THAT(keychain.calls, ElementsAre("remove deepseek-api-key"));
    EXPECT_TRUE(defaults.contains(preference::model));
}

TEST_F(AppConfigTest, ALegacyKeyMovesIntoTheKeychain) {
    defaults.setString(preference::legacyAPIKey, "\n sk-legacy ");
    config.migrateLegacyAPIKeyIfNeeded();
    EXPECT_EQ(keychain.items["deepseek-api-key"], "sk-legacy");
    EXPECT_FALSE(defaults.contains(preference::legacyAPIKey));
    EXPECT_THAT(config.apiKey(), Optional(std::string("sk-legacy")));

    defaults.setString(preference::legacyAPIKey, "older");
    config.migrateLegacyAPIKeyIfNeeded();
    EXPECT_EQ(keychain.items["deepseek-api-key"], "sk-legacy");
    EXPECT_FALSE(defaults.contains(preference::legacyAPIKey));
}

TEST_F(AppConfigTest, ALegacyKeyStaysWhereMovingItFails) {
    defaults.setString(preference::legacyAPIKey, " \n");
    config.migrateLegacyAPIKeyIfNeeded();
    EXPECT_TRUE(defaults.contains(preference::legacyAPIKey));
    EXPECT_THAT(keychain.calls, IsEmpty());

    defaults.setString(preference::legacyAPIKey, "sk");
    keychain.failures = {{"add", -1}};
    config.migrateLegacyAPIKeyIfNeeded();
    EXPECT_TRUE(defaults.contains(preference::legacyAPIKey));
    keychain.failures = {{"copyMatching", -1}};
    restarted.migrateLegacyAPIKeyIfNeeded();
    EXPECT_TRUE(defaults.contains(preference::legacyAPIKey));
    EXPECT_THAT(keychain.items, IsEmpty());
}

TEST_F(AppConfigTest, AppearanceIsOverriddenByAnExactValue) {
    config.setAppearanceMode(AppAppearanceMode::dark);
    EXPECT_THAT(defaults.string("ovrin.appearanceMode"), Optional(std::string("dark")));
    variables["OVRIN_APPEARANCE"] = "Light";
    EXPECT_EQ(config.appearanceMode(), AppAppearanceMode::dark);
    variables["OVRIN_APPEARANCE"] = "light";
    EXPECT_EQ(config.appearanceMode(), AppAppearanceMode::light);
}

TEST_F(AppConfigTest, TheTargetLanguageIsStoredOrPreferred) {
    variables["LANG"] = "zh_TW.UTF-8";
    EXPECT_EQ(config.targetLanguage(), "zh-Hant");
    variables["LANG"] = "en_US.UTF-8";
    EXPECT_EQ(config.targetLanguage(), "en");
    defaults.setString(preference::targetLanguage, "fr-FR");
    EXPECT_EQ(config.targetLanguage(), "fr-FR");
}

TEST(LanguageTagTest, KeepsLanguageAndScript) {
    const std::pair<const char*, const char*> expectations[] = {{"", ""},
                                                                {"-", "-"},
                                                                {"--", "--"},
                                                                {"ZH-hant-TW", "zh-Hant"},
                                                                {"en-US", "en"},
                                                                {"PT-br", "pt"},
                                                                {"zh_CN", "zh_cn"},
                                                                {"sr-Latn-RS", "sr-Latn"},
                                                                {"en-GB", "en"},
                                                                {"-zh--HANS-", "zh-Hans"},
                                                                {"Hant-zh", "hant"},
                                                                {"zh-CN-hans", "zh-Hans"}};
    for (const auto& [tag, normalized] : expectations) EXPECT_EQ(AppConfig::normalizeLanguageTag(tag), normalized);
    for (const auto& option : AppConfig::languageOptions) {
        EXPECT_EQ(AppConfig::normalizeLanguageTag(option.tag), option.tag);
    }
}

}  // namespace
}  // namespace ovrin
