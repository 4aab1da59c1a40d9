#include "assistant.h"

#include <QApplication>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>

#include "app/app_icon_manager.h"
#include "app/app_state.h"
#include "app/appearance_manager.h"
#include "app/deferred_writes.h"
#include "app/model_readiness.h"
#include "app/remote_command.h"
#include "app/status_bar_controller.h"
#include "app/toast_window.h"
#include "app/tray_notice.h"
#include "base/secure_random.h"
#include "base/text.h"
#include "base/user_directories.h"
#include "base/uuid.h"
#include "base/watch.h"
#include "base/worker_executor.h"
#include "language/ai_service.h"
#include "language/conversation_prompts.h"
#include "language/selection_translate_service.h"
#include "platform/linux/desktop/application_name.h"
#include "platform/linux/desktop/autostart_login_item.h"
#include "platform/linux/desktop/own_executable.h"
#include "platform/linux/desktop/session_inspection.h"
#include "platform/linux/desktop/speech_service.h"
#include "platform/linux/network/url_session_http_client.h"
#include "platform/linux/packages/downloaded_packages.h"
#include "platform/linux/packages/dpkg_system.h"
#include "platform/linux/qt/application_bus.h"
#include "platform/linux/qt/desktop_loader.h"
#include "platform/linux/qt/desktop_package_installer.h"
#include "platform/linux/qt/font_rendering.h"
#include "platform/linux/qt/inotify_file_watcher.h"
#include "platform/linux/qt/linux_desktop_settings.h"
#include "platform/linux/qt/lost_display.h"
#include "platform/linux/qt/qt_image_encoder.h"
#include "platform/linux/qt/qt_main_loop.h"
#include "platform/linux/qt/recent_windows.h"
#include "platform/linux/qt/termination_signals.h"
#include "platform/linux/qt/window_memory.h"
#include "platform/linux/qt/window_role.h"
#include "platform/linux/qt/window_system.h"
#include "platform/linux/recognition/linux_image_decoder.h"
#include "platform/linux/recognition/linux_language_identifier.h"
#include "platform/linux/recognition/onnx_text_recognizer.h"
#include "platform/linux/wayland/compositor_return.h"
#include "recognition/capture_controller.h"
#include "recognition/idle_releasing_recognizer.h"
#include "recognition/vision_ocr_engine.h"
#include "services.h"
#include "settings/application_actions.h"
#include "settings/first_launch.h"
#include "settings/settings_window_controller.h"
#include "settings/shortcuts_page_view_model.h"
#include "shortcuts/assistant_actions.h"
#include "shortcuts/command_palette_presenter.h"
#include "shortcuts/hotkey_manager.h"
#include "shortcuts/refusal_notice.h"
#include "shortcuts/registry.h"
#include "updates/update_controller.h"
#include "views/application/qt_application_icon.h"
#include "views/application/qt_windows.h"
#include "views/application/settings_key.h"
#include "views/capture/qt_capture_overlays.h"
#include "views/components/view_environment.h"
#include "views/status_item/qt_status_item.h"
#include "windows/direct_ai_window_presenter.h"
#include "windows/history_window_controller.h"
#include "windows/input_translate_presenter.h"
#include "windows/mini_popover_presenter.h"
#include "windows/result_window_presenter.h"

namespace ovrin {

namespace {

// Settled by the build alone.
UpdateConfiguration updateConfiguration() {
    return {
        .feedURL = OVRIN_UPDATE_FEED, .publicKey = OVRIN_UPDATE_KEY, .version = OVRIN_VERSION, .build = OVRIN_BUILD};
}

// Owns everything that lives as long as the program, and lets it come up.
class AppDelegate final : public AssistantActions, public ApplicationActions {
public:
    // The connection that the windows' way was chosen by, if any.
    explicit AppDelegate(std::unique_ptr<WaylandConnection> compositor);
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;
    ~AppDelegate() override;

    void applicationDidFinishLaunching();
    // The program was started a second time.
    void applicationShouldHandleReopen();
    // False for a name that stands for nothing here.
    bool perform(const std::string& words);
    // The program ends without being destroyed.
    void applicationWillEndAtOnce() { deferredWrites_.finish(); }

    void captureOCR() override { appState_.startCapture(CaptureIntent::ocr); }
    void captureTranslate() override { appState_.startCapture(CaptureIntent::translate); }
    void captureWhatIsThis() override { appState_.startCapture(CaptureIntent::whatIsThis); }
    void silentCaptureOCR() override { appState_.startCapture(CaptureIntent::silentOCR); }
    void showDirectAI() override { directAI_.show(); }
    void showInputTranslate() override { inputTranslate_.show(""); }
    void showCommandPalette() override { commandPalette_.show(); }
    void selectionTranslate() override { appState_.selectionTranslate({}); }
    void silentSelectionTranslate() override { appState_.selectionTranslate({.silent = true}); }
    void replaceSelection() override { appState_.selectionTranslate({.silent = true, .replace = true}); }
    void clipboardOCR() override { appState_.clipboardOCR(); }
    void clipboardTranslate() override { appState_.clipboardTranslate(); }
    bool showLatestResult() override;
    void showToast(std::string message, std::string symbol) override {
        toasts_.show(std::move(message), std::move(symbol));
    }

    void showHistory() override { historyWindow_.show(); }
    void showSettings(std::optional<SettingsSection> section) override { settingsWindow_.show(section); }
    bool isUpdateConfigured() const override { return updates_.isConfigured(); }
    void checkForUpdates() override { updates_.checkForUpdates(); }
    void reload() override;
    void quit() override { QApplication::quit(); }

private:
    ResultPanelViewModel::Services resultPanelServices();
    InputTranslateViewModel::Services inputTranslateServices();
    HistoryViewModel::Services historyServices();
    SettingsViewModel::Services settingsServices();
    std::unique_ptr<SettingsWindow> makeSettingsWindow(SettingsViewModel& viewModel);
    AppState::Surroundings surroundings();
    UpdateController::Services updateServices();

    std::stop_source closing_;
    QtMainLoop loop_;
    Settings settings_{closing_.get_token()};
    DefaultsStore state_{stateFile(Environment::ofProcess())};

    // How things look.
    LinuxDesktopSettings desktopSettings_;
    AppearanceManager appearance_{desktopSettings_.current()};
    ViewEnvironment environment_;
    Subscription appearanceChanges_;
    QtApplicationIcon applicationIcon_;
    AppIconManager icons_{settings_.config, settings_.defaults, applicationIcon_};

    // What reads text. The recogniser comes before the threads, which may read the environment that it changes.
    OnnxTextRecognizer loadedRecognizer_{RecognitionFiles::ofThisProgram()};
    LinuxLanguageIdentifier identifier_;
    WorkerExecutor recognitionWorker_{1};
    IdleReleasingRecognizer recognizer_{loadedRecognizer_, loop_, recognitionWorker_};

    // What answers.
    WorkerExecutor settingsWorker_{1};
    ModelReadiness readiness_{[this] { return settings_.config.modelAPIConfiguration().isReady(); }, settingsWorker_};
    ModelServices model_{settings_};
    ConversationPrompts prompts_{Environment::ofProcess, secureRandomIndex};
    std::unique_ptr<HistoryStore> history_ = openHistory();
    DeferredWrites deferredWrites_{loop_,
                                   {[this](auto patience) { return settings_.defaults.writeDeferred(patience); },
                                    [this](auto patience) { return state_.writeDeferred(patience); },
                                    [this](auto patience) { return history_->writeDeferred(patience); }}};
    InotifyFileWatcher files_;

    // The desktop.
    WorkerExecutor screenWorker_{1};
    LinuxImageDecoder decoder_;
    QtImageEncoder encoder_;
    // Where a picture's file may be on a disk that does not answer, and an encoding may take seconds.
    WorkerExecutor clipboardWorker_{1};
    DesktopLoader desktop_;
    std::unique_ptr<ScreenCapture> screen_ = desktop_.makeScreenCapture(screenWorker_);
    QtCaptureOverlays captureOverlays_{environment_};
    std::unique_ptr<ClipboardService> ownedClipboard_ = desktop_.makeClipboard(decoder_, encoder_, clipboardWorker_);
    ClipboardService& clipboard_ = *ownedClipboard_;
    std::unique_ptr<SimulateKeyboard> ownedKeyboard_ = desktop_.makeKeyboard();
    SimulateKeyboard& keyboard_ = *ownedKeyboard_;
    std::unique_ptr<DesktopLayout> layout_ = desktop_.makeDesktopLayout(screenWorker_);
    SpeechService speech_;
    std::unique_ptr<NotificationCenter> ownedNotifications_ = desktop_.makeNotificationCenter();
    NotificationCenter& notifications_ = *ownedNotifications_;
    WorkerExecutor inspectionWorker_{1};
    AutostartLoginItem loginItem_{Environment::ofProcess(), ownExecutable()};
    RecentWindows recentWindows_;
    WindowMemory windowMemory_{[this] { return recentWindows_.lastUsed() != nullptr; }};

    // Windows and flows.
    QtWindows windows_{environment_, icons_.image()};
    ToastWindow toasts_{loop_, windows_.toasts()};
    ResultWindowPresenter resultPanel_{resultPanelServices(), settings_.config, settings_.defaults,
                                       windows_.resultPanels()};
    MiniPopoverPresenter translationCard_{
        {.loop = loop_, .translation = model_.translation(identifier_), .clipboard = clipboard_, .toasts = toasts_},
        settings_.config,
        *layout_,
        windows_.translationCards()};
    InputTranslatePresenter inputTranslate_{inputTranslateServices(), settings_.config, windows_.inputTranslation()};
    DirectAIWindowPresenter directAI_{
        {.loop = loop_, .ai = AIService(model_.client), .prompts = prompts_, .history = *history_},
        settings_.config,
        windows_.directAI()};
    HistoryWindowController historyWindow_{historyServices(), windows_.history()};
    AppState appState_;

    // Updates. Their requests run on a thread of their own, which may wait for the disk.
    DpkgSystem packageSystem_;
    DownloadedPackages updatePackages_{cacheDirectory(Environment::ofProcess()) / "updates"};
    DesktopPackageInstaller packageInstaller_;
    URLSessionHTTPClient updateHTTP_{Environment::ofProcess()};  // after what its tasks use
    UpdateController updates_{updateConfiguration(), updateServices(), windows_.updates()};

    // How they are reached.
    std::unique_ptr<HotKeys> ownedHotKeys_ = desktop_.makeHotKeys(loop_);
    HotKeys& hotKeys_ = *ownedHotKeys_;
    std::unique_ptr<KeyboardLayout> ownedKeyboardLayout_ = desktop_.makeKeyboardLayout();
    KeyboardLayout& keyboardLayout_ = *ownedKeyboardLayout_;
    KeyboardShortcuts::Registry registry_{settings_.defaults, hotKeys_, keyboardLayout_, [](const std::string& line) {
                                              std::puts(line.c_str());
                                              std::fflush(stdout);
                                          }};
    HotkeyManager hotkeyManager_{registry_, settings_.defaults, loop_};
    RefusalNotice refusalNotice_{
        {.registry = registry_, .notifications = notifications_, .state = state_, .showShortcuts = [this] {
             showSettings(SettingsSection::shortcuts);
         }}};
    CommandPalettePresenter commandPalette_{
        *this, registry_, *layout_, windows_.commandPalettes(), loop_, text::caseRules(Environment::ofProcess())};
    X11Tray tray_{desktop_.screenshot()};
    QtStatusItem statusItem_{environment_, keyboardLayout_, tray_};
    TrayNotice trayNotice_{
        {.loop = loop_, .statusItem = statusItem_, .hotKeys = hotKeys_, .notifications = notifications_}};
    SettingsKey settingsKey_{[this] { showSettings(std::nullopt); }};
    std::optional<StatusBarController> statusBar_;  // from the launch on
    std::unique_ptr<SystemShortcuts> systemShortcuts_ = desktop_.makeSystemShortcuts(keyboardLayout_);
    std::optional<ShortcutsPageViewModel> shortcutsPage_;  // from the first look at the settings on
    SettingsWindowController settingsWindow_{
        settingsServices(), [this](SettingsViewModel& viewModel) { return makeSettingsWindow(viewModel); }};
};

AppDelegate::AppDelegate(std::unique_ptr<WaylandConnection> compositor)
    : desktop_(std::move(compositor)),
      appState_(std::make_unique<VisionOCREngine>(
                    std::vector<std::string>{"zh-Hans", "zh-Hant", "en-US", "ja-JP", "ko-KR"}, recognizer_, identifier_,
                    recognitionWorker_, std::chrono::system_clock::now),
                model_.translation(identifier_),
                std::make_unique<CaptureController>(loop_, captureOverlays_, *screen_, [] {}),
                std::make_unique<SelectionTranslateService>(clipboard_, keyboard_), surroundings()) {
    settings_.defaults.deferChanges(DeferredWrites::patience, deferredWrites_.note());
    state_.deferChanges(DeferredWrites::patience, deferredWrites_.note());
    history_->deferChanges(DeferredWrites::patience, deferredWrites_.note());
    appearanceChanges_ =
        watch(appearance_.settings(), [this](const DesktopSettings& settings) { environment_.setSettings(settings); });
}

// Threads are waited for one by one; none waits for others then. Windows that were closed just now are posted to be
// destroyed, and need what they show for that.
AppDelegate::~AppDelegate() {
    closing_.request_stop();
    loop_.discardPosted();
}

ResultPanelViewModel::Services AppDelegate::resultPanelServices() {
    return {.loop = loop_,
            .translation = model_.translation(identifier_),
            .ai = AIService(model_.client),
            .prompts = prompts_,
            .history = *history_,
            .clipboard = clipboard_,
            .toasts = toasts_,
            .makeSpeech = [this] { return speech_.makeSynthesizer(); }};
}

InputTranslateViewModel::Services AppDelegate::inputTranslateServices() {
    return {.loop = loop_,
            .translation = model_.translation(identifier_),
            .history = *history_,
            .clipboard = clipboard_,
            .toasts = toasts_,
            .makeSpeech = [this] { return speech_.makeSynthesizer(); }};
}

HistoryViewModel::Services AppDelegate::historyServices() {
    return {.loop = loop_,
            .history = *history_,
            .files = files_,
            .resultPanel = resultPanel_,
            .clipboard = clipboard_,
            .toasts = toasts_,
            .environment = Environment::ofProcess()};
}

SettingsViewModel::Services AppDelegate::settingsServices() {
    return {.store = {.loop = loop_,
                      .worker = settingsWorker_,
                      .ioLoop = model_.http.loop(),
                      .http = model_.http,
                      .client = model_.client,
                      .config = settings_.config,
                      .defaults = settings_.defaults,
                      .keychain = settings_.keychain,
                      .toasts = toasts_,
                      .loginItem = loginItem_,
                      .environment = Environment::ofProcess,
                      .selectEntranceIcon = [this](EntranceIconStyle style) { icons_.select(style); },
                      .applyAppearance = [this](AppAppearanceMode mode) { appearance_.apply(mode); },
                      .applyResultWindowLevel = [this] { resultPanel_.applyLevel(); }},
            .keyboard = keyboard_,
            .inspectSession =
                [this](const std::stop_token& stop) {
                    const WindowPath windows = hasNativeWindows() ? WindowPath::native : WindowPath::throughXWayland;
                    return inspectSession(windows, recognizer_, stop);
                },
            .inspectionWorker = inspectionWorker_,
            .history = *history_,
            .application = *this,
            .version = updates_.versionDisplay()};
}

std::unique_ptr<SettingsWindow> AppDelegate::makeSettingsWindow(SettingsViewModel& viewModel) {
    shortcutsPage_.emplace(registry_, KeyboardShortcuts::RecorderRules{
                                          .systemShortcuts = *systemShortcuts_,
                                          .hotKeys = hotKeys_,
                                          .menuItemUsing = [this](const KeyboardShortcuts::Shortcut& shortcut) {
                                              return statusBar_->itemUsing(shortcut, keyboardLayout_);
                                          }});
    return windows_.makeSettings(viewModel, keyboardLayout_, *shortcutsPage_);
}

AppState::Surroundings AppDelegate::surroundings() {
    return {.loop = loop_,
            .screen = *screen_,
            .clipboard = clipboard_,
            .config = settings_.config,
            .history = *history_,
            .toasts = toasts_,
            .notifications = notifications_,
            .resultPanel = resultPanel_,
            .translationCard = translationCard_};
}

UpdateController::Services AppDelegate::updateServices() {
    return {.loop = loop_,
            .source = {.loop = updateHTTP_.loop(),
                       .http = updateHTTP_,
                       .packages = updatePackages_,
                       .system = packageSystem_},
            .installer = packageInstaller_,
            .state = state_,
            .toasts = toasts_,
            .notifications = notifications_,
            .clock = std::chrono::system_clock::now};
}

void AppDelegate::applicationDidFinishLaunching() {
    settingsWorker_.post([this](const std::stop_token&) { settings_.config.migrateLegacyAPIKeyIfNeeded(); });
    appearance_.apply(settings_.config.appearanceMode());
    icons_.applySavedIcon();
    statusBar_.emplace(StatusBarController::Surroundings{
        .loop = loop_,
        .statusItem = statusItem_,
        .actions = *this,
        .application = *this,
        .registry = registry_,
        .isCapturing = appState_.isCapturing(),
        .activityText = appState_.activityText(),
        .isModelReady = [this] { return readiness_.isReady(); },
        .hasTranslationResult = [this] { return resultPanel_.hasTranslationResult(); }});
    hotkeyManager_.bindAll(*this);
    refusalNotice_.tell();
    updates_.start();
    notifications_.requestAuthorization({.alerts = true, .sounds = true});
    trayNotice_.start();
    if (const auto section = takeFirstLaunch(settings_.defaults, settings_.config)) settingsWindow_.show(section);
}

void AppDelegate::applicationShouldHandleReopen() {
    if (QWindow* const window = recentWindows_.lastUsed()) return activate(*window);
    settingsWindow_.show();
}

bool AppDelegate::perform(const std::string& words) {
    const std::optional<RemoteCommand> command = remoteCommand(words);
    if (command) ovrin::perform(*command, *this, *this);
    return command.has_value();
}

// Most preferences are read whenever they count. The cache may be waiting for the keychain, or for the user to unlock
// it, so that it is not for this thread to touch.
void AppDelegate::reload() {
    settingsWorker_.post([this](const std::stop_token&) { settings_.keychain.cache().forgetAll(); });
    registry_.synchronize();
    appearance_.apply(settings_.config.appearanceMode());
    icons_.applySavedIcon();
    resultPanel_.applyLevel();
    settingsWindow_.reload();
}

bool AppDelegate::showLatestResult() {
    if (resultPanel_.latestViewModel() == nullptr) return false;
    resultPanel_.showLatest();
    return true;
}

// Quitting ends the event loop, from wherever it was asked for. The toolkit would ask every window to close first and
// stay when one refuses; ours leave closing to their presenters.
class Application final : public QApplication {
public:
    using QApplication::QApplication;

    bool event(QEvent* event) override {
        if (event->type() != QEvent::Quit) return QApplication::event(event);
        QCoreApplication::exit();
        return true;
    }
};

}  // namespace

int runAssistant(Launch launch) {
    const CompositorReturn compositorReturn;
    if (compositorReturn.isAwaited()) {
        if (!compositorReturn.wait()) {
            std::fputs(LostDisplay::lastWords, stderr);
            return EXIT_FAILURE;
        }
        std::fputs("ovrin: the display server had ended the connection and is back; the assistant starts anew\n",
                   stderr);
    }
    std::unique_ptr<WaylandConnection> compositor = chooseWindowSystem();
    // Otherwise the toolkit asks OpenGL, too, what it could do for the first window.
    QApplication::setAttribute(Qt::AA_ForceRasterWidgets);
    // Windows carry the program's name as their class.
    std::string name = "ovrin";
    std::array<char*, 2> arguments{name.data(), nullptr};
    int argumentCount = 1;
    const Application application(argumentCount, arguments.data());
    drawOutlinesAsDesigned();
    QApplication::setApplicationName("ovrin");
    QApplication::setApplicationVersion(OVRIN_VERSION);
    QApplication::setDesktopFileName(applicationId);
    QApplication::setQuitOnLastWindowClosed(false);

    std::optional<AppDelegate> delegate;
    const LostDisplay lostDisplay({.last =
                                       [&delegate] {
                                           if (delegate) delegate->applicationWillEndAtOnce();
                                       },
                                   .startAnew = [&] { compositorReturn.startAnew("--autostart"); }});
    ApplicationBus bus;
    const auto place =
        bus.claim({.reopen = [&delegate] { delegate->applicationShouldHandleReopen(); },
                   .perform = [&delegate](const std::string& command) { return delegate->perform(command); },
                   .activationTokenReceived = setActivationToken},
                  launch);
    if (place == ApplicationBus::Place::taken) return EXIT_SUCCESS;
    if (place == ApplicationBus::Place::silent) {
        std::fputs("ovrin: another assistant runs in this session and does not answer\n", stderr);
        return EXIT_FAILURE;
    }
    if (place == ApplicationBus::Place::noBus) {
        std::fputs("ovrin: no session bus: 'ovrin do' cannot reach this assistant, and there are no notifications\n",
                   stderr);
    }
    delegate.emplace(std::move(compositor));
    const TerminationSignals termination([] { QApplication::quit(); });
    delegate->applicationDidFinishLaunching();
    return QApplication::exec();
}

}  // namespace ovrin
