// The settings window, from the first start to the model service's answer.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include <sys/stat.h>

#include "desktop/desktop_test.h"

namespace ovrin {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Optional;
using Plan = PracticeService::Plan;
using ExchangeState = PracticeService::Exchange::State;
using State = ScreenReader::State;

const std::string keyAccount = "deepseek-api-key";
const std::string rightKey = "sk-right-4711";
const std::string wrongKey = "sk-wrong-0815";

struct SettingsTest : DesktopTest {
    static Scene sceneWith(Scene::SecretService secretService) {
        return {.modelService = Scene::ModelService::unknown, .secretService = secretService};
    }

    DesktopWindow waitForSettings() const {
        DesktopWindow window = user->waitForWindow({.title = "Ovrin 设置", .program = programName});
        user->waitUntilActive(window.id);
        return window;
    }
    DesktopWindow openSettings(const std::string& section) const {
        EXPECT_EQ(assistant->run({"do", "settings", section}), 0);
        DesktopWindow window = waitForSettings();
        user->waitForStillPicture(window.area);
        return window;
    }
    ScreenReader::Element element(const std::string& name) const { return reader->waitForControl(programName, name); }
    void clickOn(const std::string& name) const { user->click(element(name).area.center()); }
    // Of a bar of choices, where only the chosen one takes the keyboard.
    void choose(const std::string& name) const {
        DesktopTest::clickOn(name);
        expectChecked(name, true);
    }

    void fill(const std::string& name, const std::string& text) const {
        clickOn(name);
        user->pressKeys("Control_L+a");
        user->type(text);
    }
    void expectText(const std::string& name, const std::string& text) const {
        waitFor(name + " to hold " + text, [&] { return element(name).text == text; });
    }
    void expectChecked(const std::string& name, bool isChecked) const {
        waitFor(name + " to be switched", [&] { return element(name).is(State::checked) == isChecked; });
    }
    void press(const std::string& name) const {
        waitFor(name + " to be possible", [&] { return element(name).is(State::enabled); });
        clickOn(name);
    }

    // The files of the desktop that hold the text in the clear.
    std::vector<std::string> filesWith(const std::string& text) const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(desktop->home())) {
            if (!entry.is_regular_file()) continue;
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string content{std::istreambuf_iterator<char>(file), {}};
            if (content.find(text) != std::string::npos) found.push_back(entry.path().filename());
        }
        return found;
    }
};

// What the two places to keep a key have in common.
struct SettingsFirstRunTest : SettingsTest, testing::WithParamInterface<bool> {
    bool hasKeyring() const { return GetParam(); }
    Scene scene() const {
        return sceneWith(hasKeyring() ? Scene::SecretService::unlocked : Scene::SecretService::none);
    }
    std::filesystem::path keyFile() const { return desktop->dataFolder() / "Ovrin/keychain.json"; }

    void expectStoredKey(const std::optional<std::string>& key) const {
        using Files = std::vector<std::string>;
        const bool isInFile = key && !hasKeyring();
        EXPECT_EQ(filesWith(rightKey), isInFile ? Files{keyFile().filename()} : Files{});
        if (hasKeyring()) {
            EXPECT_EQ(keyring->secret(keyAccount), key);
        }
        if (!isInFile) return;
        struct stat status {};
        ASSERT_EQ(::stat(keyFile().c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777U, 0600U);
    }
};

TEST_P(SettingsFirstRunTest, SetsTheServiceUpWithoutATerminal) {
    Scene firstStart = scene();
    firstStart.launch = Assistant::Setup::Launch::first;
    begin(firstStart);
    service.acceptOnly(rightKey);
    waitForSettings();
    waitForWords("连接 OpenAI 兼容或 Anthropic 模型");
    EXPECT_EQ(json::boolean(assistant->preferences(), "ovrin.didDismissWelcome"), true);
    waitFor("the note about the file",
            [&] { return reader->shows(programName, "密钥环不可用，密钥保存在仅您可读的文件中。") != hasKeyring(); });

    choose("API 规范：Anthropic");
    expectText("模型", "claude-sonnet-4-6");
    fill("连接 URL", service.baseURL());
    fill("API Key", wrongKey);
    press("测试连接");
    waitForWords("invalid x-api-key");
    fill("API Key", rightKey);
    press("测试连接");
    waitForWords("连接成功");
    const auto exchange = waitForExchange(1);
    EXPECT_EQ(exchange.request.standard, PracticeRequest::Standard::anthropic);
    EXPECT_EQ(lastMessage(exchange), "ping");
    expectStoredKey(rightKey);

    fill("连接 URL", "http://127.0.0.1:1/v1");
    press("测试连接");
    waitForWords("拒绝连接");
    EXPECT_EQ(service.exchanges().size(), 2U);

    fill("连接 URL", service.baseURL());
    service.planNext({.trouble = Plan::Trouble::hold});
    press("测试连接");
    waitForWords("正在连接");
    press("恢复默认");
    EXPECT_EQ(waitForExchange(2).state, ExchangeState::abandoned);
    waitForWords("尚未测试");
    expectText("模型", "gpt-5.2");
    expectStoredKey(std::nullopt);
    EXPECT_THAT(filesWith(wrongKey), IsEmpty());
}

TEST_P(SettingsFirstRunTest, KeepsWhatIsSavedAndDropsWhatIsNot) {
    begin(scene());
    openSettings("service");
    fill("连接 URL", service.baseURL());
    fill("API Key", rightKey);
    fill("最大输出 Token", "many");
    press("保存配置");
    waitForWords("最大输出 Token 必须大于 0。");
    expectStoredKey(std::nullopt);
    fill("最大输出 Token", "512");
    for (const char* const key : {"Tab", "space"}) user->pressKeys(key);  // 添加 Header, which comes into sight
    fill("Header 1 名称", "X-Team");
    fill("Header 1 值", "blue");
    press("保存配置");
    expectToast("服务配置已保存");
    fill("模型", "never-saved");

    openSettings("general");
    clickOn("默认目标语言：简体中文");
    const DesktopWindow menu = assistant->waitForMenu();
    for (const char* const key : {"Down", "Down", "Return"}) user->pressKeys(key);  // 繁體中文, English
    user->waitUntilGone(menu.id);
    choose("主题：深色");
    press("保存更改");
    expectToast("通用设置已保存");
    openSettings("advanced");
    fill("翻译 Prompt", "Be brief.");
    press("保存 Prompt");
    expectToast("Prompt 已保存");

    assistant->restart();
    openSettings("service");
    expectText("连接 URL", service.baseURL());
    expectText("模型", "gpt-5.2");
    expectText("最大输出 Token", "512");
    expectText("Header 1 名称", "X-Team");
    expectText("Header 1 值", "blue");
    press("显示 API Key");
    expectText("API Key", rightKey);
    expectStoredKey(rightKey);
    openSettings("general");
    element("默认目标语言：English");
    expectChecked("主题：深色", true);
    openSettings("advanced");
    expectText("翻译 Prompt", "Be brief.");

    // And it works with them.
    auto& page = openPage();
    page.copyText(page.lines()[3].text);
    DesktopTest::press(Action::clipboardTranslate);
    waitForHistory(1, Result::some);
    EXPECT_EQ(waitForExchange(0).request.key, rightKey);
}

INSTANTIATE_TEST_SUITE_P(All, SettingsFirstRunTest, testing::Bool(),
                         [](const auto& test) { return test.param ? "WithAKeyring" : "WithoutAKeyring"; });

struct SettingsKeyringTest : SettingsTest {
    DesktopWindow waitForPrompt() const {
        DesktopWindow prompt = user->waitForWindow({.program = Keyring::promptProgram});
        user->waitUntilActive(prompt.id);
        return prompt;
    }
    void refuse() const {
        const DesktopWindow prompt = waitForPrompt();
        user->pressKeys("Escape");
        user->waitUntilGone(prompt.id);
    }
};

TEST_F(SettingsKeyringTest, ALockedOneKeepsTheKeyWhateverIsPressed) {
    begin(sceneWith(Scene::SecretService::unlocked));
    const auto setKey =
        desktop->start({.arguments = {OVRIN_BINARY_DIR "/ovrin", "config", "set-key"}, .inputText = rightKey});
    ASSERT_EQ(setKey->waitForEnd(), 0);
    keyring->lock();
    assistant->restart();
    EXPECT_EQ(assistant->run({"do", "settings", "service"}), 0);
    refuse();
    waitForWords("系统密钥环已锁定，请解锁后重试。");
    press("重新读取");
    refuse();
    waitForWords("系统密钥环已锁定，请解锁后重试。");

    fill("连接 URL", service.baseURL());
    press("保存配置");  // what was not read and not typed is no part of it
    press("测试连接");
    press("恢复默认");
    refuse();
    waitForWords("系统密钥环已锁定，请解锁后重试。");
    fill("API Key", wrongKey);
    for (const char* const button : {"保存配置", "测试连接"}) {
        press(button);
        refuse();
        waitForWords("系统密钥环已锁定，请解锁后重试。");
    }
    EXPECT_THAT(service.exchanges(), IsEmpty());

    press("重新读取");
    const DesktopWindow prompt = waitForPrompt();
    user->type(std::string(Keyring::password) + "\n");
    user->waitUntilGone(prompt.id);
    waitFor("the keyring to be open", [&] { return keyring->secret(keyAccount).has_value(); });
    EXPECT_THAT(keyring->secret(keyAccount), Optional(rightKey));
}

struct SettingsControlsTest : SettingsTest {
    // What the session runs when it starts.
    std::vector<std::string> autostartCommand() const {
        std::ifstream entry(desktop->configurationFolder() / "autostart/com.quel.ovrin.desktop");
        const std::string field = "Exec=";
        std::string line;
        while (std::getline(entry, line) && !line.starts_with(field)) {
        }
        char** words = nullptr;
        if (g_shell_parse_argv(line.substr(std::min(field.size(), line.size())).c_str(), nullptr, &words, nullptr) ==
            FALSE)
            return {};
        std::vector<std::string> command;
        for (char** word = words; *word != nullptr; ++word) command.emplace_back(*word);
        g_strfreev(words);
        return command;
    }
};

TEST_F(SettingsControlsTest, TheEntryOfTheSessionStartOpensNoWindowBesideARunningAssistant) {
    begin(sceneWith(Scene::SecretService::none));
    const DesktopWindow settings = openSettings("general");
    clickOn("登录时启动");
    press("保存更改");
    expectToast("通用设置已保存");
    user->pressKeys("Control_L+w");
    user->waitUntilGone(settings.id);

    const auto command = autostartCommand();
    EXPECT_THAT(command, Contains("--autostart"));
    EXPECT_EQ(desktop->start({.arguments = command})->waitForEnd(), 0);
    DesktopTest::press(Action::commandPalette);
    assistant->waitForPalette();
    EXPECT_EQ(user->find({.program = programName}).size(), 1U) << "beside the palette";
}

}  // namespace
}  // namespace ovrin
