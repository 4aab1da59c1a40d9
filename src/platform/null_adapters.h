// The adapters behind a seam where the session has nothing for it: they work everywhere and do nothing. Each is given
// the reason, a sentence that the user reads at the action that needs it. KeyboardLayout has USKeyboardLayout.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/error.h"
#include "platform/clipboard_service.h"
#include "platform/hot_keys.h"
#include "platform/notification_center.h"
#include "platform/screen_capture.h"
#include "platform/synthetic_keyboard.h"

namespace ovrin {

class NullScreenCapture final : public ScreenCapture {
public:
    explicit NullScreenCapture(std::string reason) : reason_(std::move(reason)) {}

    bool preflightAccess() override { return false; }
    Task<bool> requestAccess() override {
        throw Error(reason_);
        co_return false;
    }
    Task<std::vector<CapturableDisplay>> displays() override {
        throw Error(reason_);
        co_return std::vector<CapturableDisplay>();
    }
    void prepare(const ScreenshotRequest& /*request*/) override {}
    Task<Image> screenshot(ScreenshotRequest /*request*/) override {
        throw Error(reason_);
        co_return Image();
    }

private:
    std::string reason_;
};

class NullHotKeys final : public HotKeys {
public:
    // instead: what the user can do for one, a sentence.
    NullHotKeys(std::string problem, std::function<std::string(const HotKey&)> instead)
        : problem_(std::move(problem)), instead_(std::move(instead)) {}

    std::optional<std::string> problem() const override { return problem_; }
    void setEvents(HotKeyEvents events) override { events_ = std::move(events); }
    void setHotKeys(const std::vector<HotKey>& hotKeys) override {
        for (const HotKey& hotKey : hotKeys) events_.failed(hotKey.name, problem_ + instead_(hotKey));
    }
    void suspend() override {}
    void resume() override {}
    bool allowsOptionAlone() const override { return true; }

private:
    std::string problem_;
    std::function<std::string(const HotKey&)> instead_;
    HotKeyEvents events_;
};

class NullClipboard final : public ClipboardService {
public:
    explicit NullClipboard(std::string reason) : reason_(std::move(reason)) {}

    std::optional<std::string> problem() const override { return reason_; }
    std::int64_t changeCount(ClipboardSource /*source*/) const override { return 0; }
    std::int64_t readCount() const override { return 0; }
    std::vector<ClipboardSource> pastedSources() const override { return {ClipboardSource::clipboard}; }
    Task<std::optional<Image>> readImage() override {
        throw Error(reason_);
        co_return std::nullopt;
    }
    Task<std::optional<std::string>> readString(ClipboardSource /*source*/) override {
        throw Error(reason_);
        co_return std::nullopt;
    }
    Task<std::vector<std::vector<std::string>>> readTypes(ClipboardSource /*source*/) override {
        co_return std::vector<std::vector<std::string>>();
    }
    Task<std::vector<std::byte>> readForm(std::size_t /*item*/, std::string /*type*/,
                                          ClipboardSource /*source*/) override {
        co_return std::vector<std::byte>();
    }
    void writeString(std::string /*text*/, ClipboardSource /*source*/) override {}
    void writeItems(std::vector<ClipboardItem> /*items*/, ClipboardSource /*source*/) override {}

private:
    std::string reason_;
};

// The program is not trusted to press keys, for which the callers have a sentence of their own. At most, what is
// selected can be read without keys.
class NullSimulateKeyboard final : public SimulateKeyboard {
public:
    bool isTrusted() override { return false; }
    Task<bool> requestTrust() override { co_return false; }
    bool reachesOtherProgram() override { return true; }
    Window frontWindow() override { return Window::nowhere; }
    Selection selection() override { return Selection::shown; }
    void copy() override {}
    void paste() override {}
};

class NullNotificationCenter final : public NotificationCenter {
public:
    void requestAuthorization(NotificationAuthorization /*wanted*/) override {}
    void add(Notification /*notification*/) override {}
};

}  // namespace ovrin
