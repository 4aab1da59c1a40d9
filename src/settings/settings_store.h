// The values behind the settings window: what the user edits, what is wrong with it, and how it is stored and tried
// out.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/event_loop.h"
#include "base/published.h"
#include "base/running_task.h"
#include "base/task.h"
#include "base/text.h"
#include "base/uuid.h"
#include "model/model_api_configuration.h"
#include "model/model_client.h"
#include "platform/http_client.h"
#include "settings/connection_test.h"
#include "settings/header_entry.h"
#include "settings/local_service_finder.h"
#include "settings/model_choices.h"
#include "settings/service_save.h"
#include "settings/settings_field.h"
#include "storage/app_config.h"
#include "storage/defaults_store.h"
#include "storage/keychain_store.h"
#include "theme/app_appearance_mode.h"
#include "theme/entrance_icon_style.h"

namespace ovrin {

class LoginItem;
class ToastPresenter;
class WorkerExecutor;

// Main thread; operations return at once. What has to do with the keyring is done on a worker, one piece after another
// in the order in which it was asked for; it reports here. Destroying the store drops what it still waits for.
class SettingsStore {
public:
    // All of it outlives the store.
    struct Surroundings {
        EventLoop& loop;
        WorkerExecutor& worker;  // of one thread
        EventLoop& ioLoop;       // where requests for lists of models run
        HTTPClientProtocol& http;
        ModelClient client;  // whose way to the service the connection test takes
        AppConfig& config;
        DefaultsStore& defaults;
        KeychainStore& keychain;
        ToastPresenter& toasts;
        LoginItem& loginItem;
        EnvironmentSource environment;
        std::function<void(EntranceIconStyle style)> selectEntranceIcon;  // stores and shows it; throws Error
        std::function<void(AppAppearanceMode mode)> applyAppearance;
        std::function<void()> applyResultWindowLevel;  // as the stored preference says
    };

    using HeaderEntry = ovrin::HeaderEntry;
    using ConnectionState = ovrin::ConnectionState;
    using ModelChoices = ovrin::ModelChoices;

    struct LanguageOption {
        std::string tag;
        std::string name;

        bool operator==(const LanguageOption&) const = default;
    };

    // Loads every value, and asks the keyring for its own.
    explicit SettingsStore(Surroundings surroundings);
    SettingsStore(const SettingsStore&) = delete;
    SettingsStore& operator=(const SettingsStore&) = delete;
    ~SettingsStore();

    // Service page. Edited until saved.
    const SettingsField<ModelAPIStandard>& apiStandard() const { return apiStandard_; }
    const SettingsField<std::string>& connectionURL() const { return connectionURL_; }
    const SettingsField<std::string>& apiKey() const { return apiKey_; }
    const SettingsField<std::string>& model() const { return model_; }
    // Any text; what is no whole number above 0 is in error at once.
    const SettingsField<std::string>& maxOutputTokens() const { return maxOutputTokens_; }
    // The note and the error are of the list as a whole.
    const SettingsField<std::vector<HeaderEntry>, SameHeaderRows>& customHeaders() const { return customHeaders_; }

    // Fills the draft with what leads to the service, and empties the key: it asks for none, and another service's key
    // is none of its business.
    void useLocalService(const LocalService& service);

    // Asks the service of the draft, with the draft's key, which models it has. Why there is no list is told as the
    // error of model(). Editing what leads to the service drops the question and the list.
    void listModels();
    const Published<ModelChoices>& modelChoices() const { return modelChoices_.choices(); }

    // Puts in the new standard's defaults for a URL and a model that are not the user's own, and drops a running test.
    void updateAPIStandard(ModelAPIStandard standard);
    void editConnectionURL(std::string text);
    void editAPIKey(std::string text);
    void editModel(std::string text);
    void editMaxOutputTokens(std::string text);
    void addHeader();
    void editHeaderName(const Uuid& id, std::string name);
    void editHeaderValue(const Uuid& id, std::string value);
    void removeHeader(const Uuid& id);

    // True from the start until the keyring has answered; the fields of key and headers are disabled meanwhile.
    const Published<bool>& isLoadingKeyring() const { return isLoadingKeyring_; }
    // Whether the buttons can be pressed: 保存配置, 测试连接, 恢复默认. The test stays pressable while it runs: another
    // press starts it anew.
    const Published<bool>& canSaveService() const { return canSaveService_; }
    const Published<bool>& canTestConnection() const { return canTestConnection_; }
    const Published<bool>& canResetService() const { return canResetService_; }
    // The keyring could not be read: 重新读取 is offered.
    const Published<bool>& canReloadKeyring() const { return canReloadKeyring_; }
    // 密钥环不可用，密钥保存在仅您可读的文件中。 Empty where there is a keyring.
    const Published<std::string>& keyStorageNote() const { return keyStorageNote_; }

    const Published<ConnectionState>& connectionState() const { return connectionTest_.state(); }

    void saveService();
    void resetService();
    // Saves first, without a toast.
    void testConnection();
    void reloadKeyring();

    // General page.
    // The choices of the language picker: the offered ones, and the stored one where it is none of them.
    const Published<std::vector<LanguageOption>>& languageOptions() const { return languageOptions_; }
    // The tag of one of the languageOptions(). Edited until saved.
    const SettingsField<std::string>& targetLanguage() const { return targetLanguage_; }
    const SettingsField<bool>& launchAtLogin() const { return launchAtLogin_; }
    // Stored and applied by their update operation.
    const SettingsField<AppAppearanceMode>& appearanceMode() const { return appearanceMode_; }
    const SettingsField<EntranceIconStyle>& entranceIconStyle() const { return entranceIconStyle_; }
    const SettingsField<bool>& resultWindowAlwaysOnTop() const { return resultWindowAlwaysOnTop_; }

    void editTargetLanguage(std::string tag);
    void editLaunchAtLogin(bool isOn);
    // A choice that cannot be stored goes back to what is stored, and the field is in error.
    void updateAppearanceMode(AppAppearanceMode mode);
    void updateEntranceIcon(EntranceIconStyle style);
    void updateResultWindowAlwaysOnTop(bool isOn);
    void saveGeneral();

    // Advanced page. Edited until saved.
    const SettingsField<std::string>& translationPrompt() const { return translationPrompt_; }
    const SettingsField<std::string>& explanationPrompt() const { return explanationPrompt_; }

    void editTranslationPrompt(std::string text);
    void editExplanationPrompt(std::string text);
    void savePrompts();
    // Both prompts become empty, and are saved.
    void resetPrompts();

    // What was saved last, for two seconds.
    const Published<std::optional<std::string>>& savedMessage() const { return savedMessage_; }

    // Something outside may have changed the preferences or the keyring.
    void reload();
    // The window appears: the login item may have been changed by other means.
    void refreshLoginItem();

private:
    // What the keyring told.
    struct KeyringContent {
        std::optional<std::string> apiKey;  // the effective one; none when it could not be had
        std::optional<Headers> customHeaders;
        std::optional<std::string> failure;
        bool isKeptInFile = false;
    };
    // What a button that saves goes by, and the fields at that moment.
    struct PressedSave {
        ServiceSave save;
        std::string connectionURL;
        std::string apiKey;
        std::string model;
        std::string maxOutputTokens;
        std::vector<HeaderEntry> customHeaders;
    };
    enum class Reading : std::uint8_t { shown, quiet };

    void loadPreferences();
    void loadLanguages();

    static KeyringContent keyringContent(const AppConfig& config, const KeychainStore& keychain);
    bool isKeyringUnread() const;
    Task<void> readKeyring(Reading reading);
    void takeKeyringContent(const KeyringContent& content);

    ModelAPIConfiguration serviceConfiguration() const;
    void validate(ModelAPIConfiguration configuration) const;
    std::optional<PressedSave> pressSave();
    Task<std::optional<std::string>> store(PressedSave pressed);
    Task<void> saveAndShow(PressedSave pressed);
    Task<void> saveAndTest(PressedSave pressed, std::uint64_t test);
    Task<void> reset();
    void editHeader(const Uuid& id, const std::function<void(HeaderEntry& row)>& edit);

    template <typename Field, typename Write>
    bool store(Field& field, const Write& write);
    template <typename Field, typename Write>
    bool storeChoice(Field& field, const Write& write);
    bool storeAppearanceMode();
    bool storeTargetLanguage();
    bool storeResultWindowAlwaysOnTop();
    bool storeLaunchAtLogin();
    void showSaved(std::string message);
    Task<void> forgetSavedMessage(std::string message);
    void updatePermissions();

    Surroundings surroundings_;
    text::CaseInsensitiveOrder headerOrder_;

    SettingsField<ModelAPIStandard> apiStandard_;
    SettingsField<std::string> connectionURL_;
    SettingsField<std::string> apiKey_;
    SettingsField<std::string> model_;
    SettingsField<std::string> maxOutputTokens_;
    SettingsField<std::vector<HeaderEntry>, SameHeaderRows> customHeaders_;
    Published<bool> isLoadingKeyring_;
    Published<bool> canSaveService_;
    Published<bool> canTestConnection_;
    Published<bool> canResetService_;
    Published<bool> canReloadKeyring_;
    Published<std::string> keyStorageNote_;
    int saves_ = 0;  // under way
    int resets_ = 0;

    Published<std::vector<LanguageOption>> languageOptions_;
    SettingsField<std::string> targetLanguage_;
    SettingsField<bool> launchAtLogin_;
    SettingsField<AppAppearanceMode> appearanceMode_;
    SettingsField<EntranceIconStyle> entranceIconStyle_;
    SettingsField<bool> resultWindowAlwaysOnTop_;

    SettingsField<std::string> translationPrompt_;
    SettingsField<std::string> explanationPrompt_;

    Published<std::optional<std::string>> savedMessage_;

    ConnectionTest connectionTest_;
    ModelChoicesLoader modelChoices_;
    TaskGroup operations_;
};

}  // namespace ovrin
