// A test with the whole program on a desktop of its own: a user, another program, the assistant and the practice
// service that it asks. When a test fails, a picture of the screen is kept and what the assistant wrote is printed.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "base/json.h"
#include "desktop/assistant.h"
#include "desktop/keyring.h"
#include "desktop/picture.h"
#include "desktop/private_desktop.h"
#include "desktop/sample_program.h"
#include "desktop/screen_reader.h"
#include "desktop/test_user.h"
#include "desktop/wait.h"
#include "fakes/name_hiding_socket.h"
#include "practice/practice_service.h"

namespace ovrin {

class DesktopTest : public testing::Test {
protected:
    struct Scene {
        std::string program = OVRIN_BINARY_DIR "/ovrin";
        std::vector<std::string> environment{};  // of the assistant, on top of what it gets anyway
        std::string hidden{};                    // the extension of the X server that it does not get to see
        PrivateDesktop::Setup desktop{.accessibility = PrivateDesktop::Accessibility::on};
        std::string standard = "openai-compatible";
        Assistant::Setup::Launch launch = Assistant::Setup::Launch::later;
        Assistant::Setup::Sign sign = Assistant::Setup::Sign::both;
        json::Value preferences = json::Value::object();
        // What the assistant is told of the practice service: by its environment, or nothing.
        enum class ModelService { inEnvironment, unknown } modelService = ModelService::inEnvironment;
        // mute: one runs and answers nobody
        enum class SecretService { none, unlocked, mute } secretService = SecretService::none;
        std::function<void()> beforeLaunch{};  // the desktop is there, the assistant not yet
    };
    void begin(const Scene& scene);
    void begin() { begin(Scene()); }
    void TearDown() override;

    SampleProgram& openPage() { return open(SampleProgram::Kind::page); }
    SampleProgram& openEditor() { return open(SampleProgram::Kind::editor); }

    // Every action has a shortcut here: Super+Shift and a letter.
    enum class Action : char {
        captureOCR = 'o',
        captureTranslate = 't',
        askWhatIsThis = 's',
        directAskAI = 'w',
        inputTranslate = 'i',
        selectionTranslate = 'd',
        silentSelectionTranslate = 'e',
        replaceSelection = 'v',
        silentCaptureOCR = 'c',
        clipboardOCR = 'a',
        clipboardTranslate = 'k',
        showResultWindow = 'r',
        commandPalette = 'p',
    };
    void press(Action action) const;
    // Presses, and drags over the area once there is an overlay on every monitor.
    void capture(Action action, const PixelArea& area) const;

    // The menu of the tray icon, clicked on with the button.
    DesktopWindow openMenu(TestUser::Button button) const;

    // The history once it has so many records and the newest of them a result, if it gets one.
    enum class Result { none, some };
    json::Value waitForHistory(std::size_t records, Result result = Result::none) const;
    // The exchange of this number, counted from 0, once it has ended.
    PracticeService::Exchange waitForExchange(std::size_t number) const;
    static std::string lastMessage(const PracticeService::Exchange& exchange);
    static std::string systemPrompt(const PracticeService::Exchange& exchange);

    void waitForWords(const std::string& words) const { reader->waitForWords(programName, words); }
    void clickOn(const std::string& name) const;
    // The toast with this text; it is waited for, and then for its end.
    void expectToast(const std::string& text) const;
    bool isToastShown() const { return assistant->toast().has_value(); }

    static constexpr const char* programName = "ovrin";

    PracticeService service{std::chrono::milliseconds(1)};
    std::unique_ptr<PrivateDesktop> desktop;
    std::unique_ptr<Keyring> keyring;  // where the scene has one
    std::unique_ptr<TestUser> user;
    std::unique_ptr<ScreenReader> reader;
    std::unique_ptr<Assistant> assistant;
    std::vector<std::unique_ptr<SampleProgram>> programs;

private:
    SampleProgram& open(SampleProgram::Kind kind);

    std::size_t monitorCount_ = 1;
    std::optional<NameHidingSocket> server_;
};

}  // namespace ovrin
