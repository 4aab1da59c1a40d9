#include "settings/settings_store.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <utility>

#include "base/error.h"
#include "base/suspension.h"
#include "base/worker_executor.h"
#include "language/language_names.h"
#include "model/deep_seek_error.h"
#include "model/local_service.h"
#include "platform/login_item.h"
#include "platform/toast_presenter.h"
#include "settings/service_standard.h"
#include "storage/preferences.h"

namespace ovrin {
namespace {

using namespace std::chrono_literals;

const std::string noModelList = "无法列出模型：";

// How long savedMessage stands.
constexpr auto savedMessageTime = 2s;

std::string trimmed(const std::string& text) {
    return std::string(text::trimmed(text));
}

// The number that a text says; 0 when it says none above 0 that a configuration can hold.
std::int64_t outputTokens(std::string_view text) {
    const std::string_view digits = text::trimmed(text);
    std::int64_t number = 0;
    const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return failure == std::errc() && end == digits.data() + digits.size() && number > 0 ? number : 0;
}

// What the work failed with, if it did.
template <typename Work>
std::optional<std::string> failureOf(const Work& work) {
    try {
        work();
        return std::nullopt;
    } catch (const Error& error) {
        return error.errorDescription();
    }
}

}  // namespace

SettingsStore::SettingsStore(Surroundings surroundings)
    : surroundings_(std::move(surroundings)),
      headerOrder_(surroundings_.environment()),
      connectionTest_(surroundings_.loop, surroundings_.client),
      modelChoices_(surroundings_.loop, surroundings_.ioLoop, surroundings_.http,
                    [this](const std::string& reason) { model_.setError(noModelList + reason); }),
      operations_(surroundings_.loop) {
    loadPreferences();
    refreshLoginItem();
    operations_.start(readKeyring(Reading::shown));
}

SettingsStore::~SettingsStore() = default;

void SettingsStore::reload() {
    loadPreferences();
    refreshLoginItem();
    operations_.start(readKeyring(Reading::quiet));
}

void SettingsStore::loadPreferences() {
    const AppConfig& config = surroundings_.config;
    const DefaultsStore& defaults = surroundings_.defaults;
    const AppConfig::Overrides overrides = config.overrides();
    apiStandard_.follow(config.apiStandard(), overrides.apiStandard);
    connectionURL_.follow(config.connectionURL(), overrides.connectionURL);
    model_.follow(config.model());
    maxOutputTokens_.follow(std::to_string(config.maxOutputTokens()));
    appearanceMode_.follow(config.appearanceMode(), overrides.appearanceMode);
    entranceIconStyle_.follow(config.entranceIconStyle());
    resultWindowAlwaysOnTop_.follow(defaults.boolean(preference::resultWindowAlwaysOnTop));
    translationPrompt_.follow(defaults.string(preference::translationPrompt).value_or(""));
    explanationPrompt_.follow(defaults.string(preference::explanationPrompt).value_or(""));
    loadLanguages();
    targetLanguage_.follow(AppConfig::normalizeLanguageTag(config.targetLanguage()));
}

void SettingsStore::loadLanguages() {
    std::vector<LanguageOption> options;
    options.reserve(AppConfig::languageOptions.size() + 1);
    for (const auto& [tag, name] : AppConfig::languageOptions) {
        options.push_back({.tag = std::string(tag), .name = std::string(name)});
    }
    const std::string stored = AppConfig::normalizeLanguageTag(surroundings_.config.targetLanguage());
    if (std::ranges::find(options, stored, &LanguageOption::tag) == options.end()) {
        options.push_back({.tag = stored, .name = stored.empty() ? "未指定" : displayLanguageName(stored)});
    }
    languageOptions_.set(std::move(options));
}

void SettingsStore::refreshLoginItem() {
    launchAtLogin_.follow(surroundings_.loginItem.isEnabled());
}

// The keyring.

void SettingsStore::reloadKeyring() {
    if (!isLoadingKeyring_.value()) operations_.start(readKeyring(Reading::shown));
}

// A keyring that refuses once is not asked a second time at once: each question may be a dialog.
SettingsStore::KeyringContent SettingsStore::keyringContent(const AppConfig& config, const KeychainStore& keychain) {
    KeyringContent content;
    try {
        content.apiKey = config.rereadAPIKey().value_or("");
        content.customHeaders = config.rereadCustomHeaders();
        content.isKeptInFile = keychain.isKeptInFile();
    } catch (const Error& error) {
        content.failure = error.errorDescription();
    }
    return content;
}

bool SettingsStore::isKeyringUnread() const {
    return apiKey_.isUnread() || customHeaders_.isUnread();
}

Task<void> SettingsStore::readKeyring(Reading reading) {
    const bool wasUnread = isKeyringUnread();
    if (reading == Reading::shown) {
        isLoadingKeyring_.set(true);
        apiKey_.setLoading();
        customHeaders_.setLoading();
        updatePermissions();
    }
    // The store may go before the worker's turn comes; what it was given stays.
    auto work = [&config = surroundings_.config, &keychain = surroundings_.keychain](const std::stop_token&) {
        return keyringContent(config, keychain);
    };
    const KeyringContent content = co_await surroundings_.worker.run(std::move(work));
    takeKeyringContent(content);
    if (wasUnread && connectionTest_.hasFailed() && !content.failure) connectionTest_.setIdle();
    if (reading == Reading::shown) isLoadingKeyring_.set(false);
    updatePermissions();
}

void SettingsStore::takeKeyringContent(const KeyringContent& content) {
    if (content.apiKey) {
        apiKey_.follow(*content.apiKey, surroundings_.config.overrides().apiKey);
    } else {
        apiKey_.setUnread();
    }
    if (content.customHeaders) {
        customHeaders_.follow(headerRows(*content.customHeaders, headerOrder_));
    } else {
        customHeaders_.setUnread();
    }
    if (content.failure) return connectionTest_.fail(*content.failure);
    keyStorageNote_.set(content.isKeptInFile ? "密钥环不可用，密钥保存在仅您可读的文件中。" : "");
}

void SettingsStore::updatePermissions() {
    const bool isLoading = isLoadingKeyring_.value();
    canSaveService_.set(!isLoading && saves_ == 0 && resets_ == 0);
    canTestConnection_.set(!isLoading && resets_ == 0);
    canResetService_.set(resets_ == 0);
    canReloadKeyring_.set(!isLoading && isKeyringUnread());
}

// The service page.

void SettingsStore::updateAPIStandard(ModelAPIStandard standard) {
    const ModelAPIStandard old = apiStandard_.value().value();
    if (standard == old) return;
    connectionTest_.cancel();
    modelChoices_.forget();
    apiStandard_.edit(standard);
    if (isDefaultConnectionURL(connectionURL_.value().value(), old)) {
        connectionURL_.edit(std::string(defaultConnectionURL(standard)));
    }
    if (isDefaultModel(model_.value().value(), old)) model_.edit(std::string(defaultModel(standard)));
    connectionTest_.setIdle();
}

void SettingsStore::editConnectionURL(std::string text) {
    modelChoices_.forget();
    connectionURL_.edit(std::move(text));
}

void SettingsStore::editAPIKey(std::string text) {
    modelChoices_.forget();
    apiKey_.edit(std::move(text));
}

void SettingsStore::editModel(std::string text) {
    model_.edit(std::move(text));
}

void SettingsStore::editMaxOutputTokens(std::string text) {
    const bool isValid = outputTokens(text) > 0;
    maxOutputTokens_.edit(std::move(text));
    if (!isValid) maxOutputTokens_.setError("请填写大于 0 的整数。");
}

void SettingsStore::addHeader() {
    std::vector<HeaderEntry> rows = customHeaders_.value().value();
    rows.push_back({.id = Uuid::random(), .name = {}, .value = {}});
    customHeaders_.edit(std::move(rows));
}

void SettingsStore::editHeaderName(const Uuid& id, std::string name) {
    editHeader(id, [&](HeaderEntry& row) { row.name = std::move(name); });
}

void SettingsStore::editHeaderValue(const Uuid& id, std::string value) {
    editHeader(id, [&](HeaderEntry& row) { row.value = std::move(value); });
}

void SettingsStore::editHeader(const Uuid& id, const std::function<void(HeaderEntry& row)>& edit) {
    std::vector<HeaderEntry> rows = customHeaders_.value().value();
    const auto row = std::ranges::find(rows, id, &HeaderEntry::id);
    if (row == rows.end()) return;
    edit(*row);
    customHeaders_.edit(std::move(rows));
}

void SettingsStore::removeHeader(const Uuid& id) {
    std::vector<HeaderEntry> rows = customHeaders_.value().value();
    std::erase_if(rows, [&](const HeaderEntry& row) { return row.id == id; });
    customHeaders_.edit(std::move(rows));
}

void SettingsStore::useLocalService(const LocalService& service) {
    connectionTest_.cancel();
    modelChoices_.forget();
    apiStandard_.edit(ModelAPIStandard::openAICompatible);
    connectionURL_.edit(service.connectionURL);
    apiKey_.edit({});
    const bool hasModel = std::ranges::find(service.models, trimmed(model_.value().value())) != service.models.end();
    if (!hasModel && !service.models.empty()) model_.edit(service.models.front());
    connectionTest_.setIdle();
}

void SettingsStore::listModels() {
    modelChoices_.forget();
    try {
        HTTPRequest request = modelListRequest(serviceConfiguration());
        model_.setError({});
        modelChoices_.load(std::move(request));
    } catch (const Error& error) {
        model_.setError(noModelList + error.errorDescription());
    }
}

ModelAPIConfiguration SettingsStore::serviceConfiguration() const {
    return {.standard = apiStandard_.value().value(),
            .connectionURL = trimmed(connectionURL_.value().value()),
            .apiKey = trimmed(apiKey_.value().value()),
            .model = trimmed(model_.value().value()),
            .customHeaders = headersOf(customHeaders_.value().value()),
            .maxOutputTokens = outputTokens(maxOutputTokens_.value().value())};
}

// A keyring that could not be read may hold what authenticates.
void SettingsStore::validate(ModelAPIConfiguration configuration) const {
    if (isKeyringUnread() && !configuration.hasAuthentication()) configuration.apiKey = "unread";
    withLocalKey(std::move(configuration)).validated();
}

// The fields as they are now, checked; none when they cannot be saved, which the connection state tells.
std::optional<SettingsStore::PressedSave> SettingsStore::pressSave() {
    try {
        const ModelAPIConfiguration configuration = serviceConfiguration();
        validate(configuration);
        return PressedSave{.save = {.configuration = configuration,
                                    .writesAPIKey = !apiKey_.isUnread() || apiKey_.isDraft(),
                                    .writesCustomHeaders = !customHeaders_.isUnread() || customHeaders_.isDraft()},
                           .connectionURL = connectionURL_.value().value(),
                           .apiKey = apiKey_.value().value(),
                           .model = model_.value().value(),
                           .maxOutputTokens = maxOutputTokens_.value().value(),
                           .customHeaders = customHeaders_.value().value()};
    } catch (const DeepSeekError& error) {
        connectionTest_.fail(error.errorDescription());
        return std::nullopt;
    }
}

// Gives the failure, if there is one.
Task<std::optional<std::string>> SettingsStore::store(PressedSave pressed) {
    ++saves_;
    updatePermissions();
    auto work = [save = pressed.save, &config = surroundings_.config, &defaults = surroundings_.defaults,
                 &keychain = surroundings_.keychain](const std::stop_token&) {
        return failureOf([&] { save.store(config, defaults, keychain); });
    };
    std::optional<std::string> failure = co_await surroundings_.worker.run(std::move(work));
    --saves_;
    updatePermissions();
    if (failure) co_return failure;
    const AppConfig& config = surroundings_.config;
    const ModelAPIConfiguration& saved = pressed.save.configuration;
    apiStandard_.markSaved(saved.standard, config.apiStandard());
    connectionURL_.markSaved(pressed.connectionURL, config.connectionURL());
    model_.markSaved(pressed.model, saved.model);
    maxOutputTokens_.markSaved(pressed.maxOutputTokens, std::to_string(saved.maxOutputTokens));
    if (pressed.save.writesAPIKey) apiKey_.markSaved(pressed.apiKey, config.apiKeyOverride().value_or(saved.apiKey));
    if (pressed.save.writesCustomHeaders) {
        customHeaders_.markSaved(pressed.customHeaders, headerRows(saved.customHeaders, headerOrder_));
    }
    updatePermissions();
    co_return failure;
}

void SettingsStore::saveService() {
    if (!canSaveService_.value()) return;
    if (auto pressed = pressSave()) operations_.start(saveAndShow(*std::move(pressed)));
}

Task<void> SettingsStore::saveAndShow(PressedSave pressed) {
    const std::optional<std::string> failure = co_await store(std::move(pressed));
    if (failure) co_return connectionTest_.fail(*failure);
    // What had failed before is made good.
    if (connectionTest_.hasFailed() && !isKeyringUnread()) connectionTest_.setIdle();
    showSaved("服务配置已保存");
}

void SettingsStore::testConnection() {
    if (!canTestConnection_.value()) return;
    connectionTest_.cancel();
    auto pressed = pressSave();
    if (!pressed) return;
    operations_.start(saveAndTest(*std::move(pressed), connectionTest_.begin()));
}

// The save goes on to its end whatever becomes of the test.
Task<void> SettingsStore::saveAndTest(PressedSave pressed, std::uint64_t test) {
    ServiceSave save = pressed.save;
    const std::optional<std::string> failure = co_await store(std::move(pressed));
    if (!connectionTest_.isNewest(test)) co_return;
    if (failure) co_return connectionTest_.fail(*failure);
    if (!save.writesAPIKey || !save.writesCustomHeaders) {
        // What the service needs is in the keyring, which is asked once more.
        co_await readKeyring(Reading::quiet);
        if (!connectionTest_.isNewest(test) || isKeyringUnread()) co_return;
        const std::optional<PressedSave> complete = pressSave();
        if (!complete) co_return;
        const ModelAPIConfiguration& read = complete->save.configuration;
        if (!save.writesAPIKey) save.configuration.apiKey = read.apiKey;
        if (!save.writesCustomHeaders) save.configuration.customHeaders = read.customHeaders;
    }
    connectionTest_.ask(withLocalKey(std::move(save.configuration)));
}

void SettingsStore::resetService() {
    if (!canResetService_.value()) return;
    connectionTest_.cancel();
    if (connectionTest_.isTesting()) connectionTest_.setIdle();
    operations_.start(reset());
}

Task<void> SettingsStore::reset() {
    ++resets_;
    updatePermissions();
    auto work = [&config = surroundings_.config](const std::stop_token&) {
        return failureOf([&] { config.resetModelConfiguration(); });
    };
    const std::optional<std::string> failure = co_await surroundings_.worker.run(std::move(work));
    --resets_;
    if (failure) {
        updatePermissions();
        co_return connectionTest_.fail(*failure);
    }
    const AppConfig& config = surroundings_.config;
    const auto set = [](auto& field, auto value, auto effective) {
        field.edit(value);
        field.markSaved(value, effective);
    };
    set(apiStandard_, ModelAPIStandard::openAICompatible, config.apiStandard());
    set(connectionURL_, std::string(ModelAPIConfiguration::defaultOpenAIConnectionURL), config.connectionURL());
    set(apiKey_, std::string(), config.apiKeyOverride().value_or(""));
    set(model_, std::string(ModelAPIConfiguration::defaultOpenAIModel), config.model());
    const std::string tokens = std::to_string(ModelAPIConfiguration::defaultMaxOutputTokens);
    set(maxOutputTokens_, tokens, tokens);
    set(customHeaders_, std::vector<HeaderEntry>(), std::vector<HeaderEntry>());
    updatePermissions();
    connectionTest_.setIdle();
    showSaved("模型配置已恢复默认");
}

// The other pages. A write stores what its field holds and gives what counts from then on.

template <typename Field, typename Write>
bool SettingsStore::store(Field& field, const Write& write) {
    field.setError({});
    try {
        auto effective = write();
        field.markSaved(field.value().value(), std::move(effective));
        return true;
    } catch (const Error& error) {
        connectionTest_.fail(error.errorDescription());
        field.setError(error.errorDescription());
        surroundings_.toasts.show(error.errorDescription(), "exclamationmark.triangle");
        return false;
    }
}

// A choice that could not be stored goes back to what is stored.
template <typename Field, typename Write>
bool SettingsStore::storeChoice(Field& field, const Write& write) {
    const bool isStored = store(field, write);
    if (!isStored) field.revert();
    return isStored;
}

bool SettingsStore::storeAppearanceMode() {
    return storeChoice(appearanceMode_, [this] {
        surroundings_.config.setAppearanceMode(appearanceMode_.value().value());
        return surroundings_.config.appearanceMode();
    });
}

bool SettingsStore::storeTargetLanguage() {
    const bool isStored = storeChoice(targetLanguage_, [this] {
        std::string tag = AppConfig::normalizeLanguageTag(targetLanguage_.value().value());
        surroundings_.defaults.setString(preference::targetLanguage, tag);
        return tag;
    });
    if (isStored) loadLanguages();
    return isStored;
}

bool SettingsStore::storeResultWindowAlwaysOnTop() {
    return storeChoice(resultWindowAlwaysOnTop_, [this] {
        const bool isOn = resultWindowAlwaysOnTop_.value().value();
        surroundings_.defaults.setBoolean(preference::resultWindowAlwaysOnTop, isOn);
        return isOn;
    });
}

bool SettingsStore::storeLaunchAtLogin() {
    LoginItem& item = surroundings_.loginItem;
    const bool isStored = storeChoice(launchAtLogin_, [&] {
        const bool isOn = launchAtLogin_.value().value();
        const bool isEnabled = item.isEnabled();
        if (isOn && !isEnabled) item.registerItem();
        if (!isOn && isEnabled) item.unregisterItem();
        surroundings_.defaults.setBoolean(preference::launchAtLogin, isOn);
        return isOn;
    });
    if (!isStored) refreshLoginItem();
    return isStored;
}

void SettingsStore::editTargetLanguage(std::string tag) {
    targetLanguage_.edit(std::move(tag));
}

void SettingsStore::editLaunchAtLogin(bool isOn) {
    launchAtLogin_.edit(isOn);
}

void SettingsStore::updateAppearanceMode(AppAppearanceMode mode) {
    if (mode == appearanceMode_.value().value()) return;
    appearanceMode_.edit(mode);
    if (storeAppearanceMode()) surroundings_.applyAppearance(mode);
}

void SettingsStore::updateEntranceIcon(EntranceIconStyle style) {
    if (style == entranceIconStyle_.value().value()) return;
    entranceIconStyle_.edit(style);
    storeChoice(entranceIconStyle_, [&] {
        surroundings_.selectEntranceIcon(style);
        return style;
    });
}

void SettingsStore::updateResultWindowAlwaysOnTop(bool isOn) {
    if (isOn == resultWindowAlwaysOnTop_.value().value()) return;
    resultWindowAlwaysOnTop_.edit(isOn);
    if (storeResultWindowAlwaysOnTop()) surroundings_.applyResultWindowLevel();
}

void SettingsStore::saveGeneral() {
    const bool areStored =
        storeAppearanceMode() && storeTargetLanguage() && storeResultWindowAlwaysOnTop() && storeLaunchAtLogin();
    if (areStored) showSaved("通用设置已保存");
}

void SettingsStore::editTranslationPrompt(std::string text) {
    translationPrompt_.edit(std::move(text));
}

void SettingsStore::editExplanationPrompt(std::string text) {
    explanationPrompt_.edit(std::move(text));
}

void SettingsStore::savePrompts() {
    const auto save = [this](SettingsField<std::string>& field, std::string_view key) {
        return store(field, [&] {
            surroundings_.defaults.setString(key, field.value().value());
            return field.value().value();
        });
    };
    if (save(translationPrompt_, preference::translationPrompt) &&
        save(explanationPrompt_, preference::explanationPrompt)) {
        showSaved("Prompt 已保存");
    }
}

void SettingsStore::resetPrompts() {
    translationPrompt_.edit({});
    explanationPrompt_.edit({});
    savePrompts();
}

void SettingsStore::showSaved(std::string message) {
    savedMessage_.set(message);
    surroundings_.toasts.show(message, "checkmark");
    operations_.start(forgetSavedMessage(std::move(message)));
}

Task<void> SettingsStore::forgetSavedMessage(std::string message) {
    co_await sleepFor(savedMessageTime);
    if (savedMessage_.value() == message) savedMessage_.set(std::nullopt);
}

}  // namespace ovrin
