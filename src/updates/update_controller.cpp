#include "updates/update_controller.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "base/error.h"
#include "base/suspension.h"
#include "base/uuid.h"
#include "platform/notification_center.h"
#include "platform/toast_presenter.h"
#include "storage/state_key.h"

namespace ovrin {

namespace {

using namespace std::chrono_literals;

constexpr auto interval = 24h;
// Programs that are started with the session come up before the network does.
constexpr auto patienceAfterLaunch = 10s;

}  // namespace

UpdateController::UpdateController(UpdateConfiguration configuration, Services services, MakeUpdateWindow makeWindow)
    : configuration_(std::move(configuration)),
      services_(std::move(services)),
      source_(configuration_, services_.source),
      makeWindow_(std::move(makeWindow)),
      window_(services_.loop),
      dailyCheck_(services_.loop) {}

void UpdateController::start() {
    if (!isConfigured()) return;
    services_.source.loop.post([&packages = services_.source.packages] { packages.removeLeftovers(); });
    dailyCheck_.replace(checkDaily());
}

void UpdateController::checkForUpdates() {
    if (!isConfigured()) return services_.toasts.show("自动更新尚未配置", "exclamationmark.triangle");
    if (window_.isOpen()) {
        window_.viewModel()->checkAgain();
        return window_.window().present();
    }
    open(std::nullopt);
}

EventLoop::Duration UpdateController::timeUntilCheck() const {
    const auto last = parseIso8601(services_.state.string(stateKey::lastUpdateCheck).value_or(""));
    const Timestamp now = services_.clock();
    // A check in the future was made under a clock that went wrong.
    if (!last || *last > now) return 0ns;
    return *last + interval - now;
}

Task<void> UpdateController::checkDaily() {
    EventLoop::Duration delay = std::max<EventLoop::Duration>(timeUntilCheck(), patienceAfterLaunch);
    while (true) {
        co_await sleepFor(delay);
        delay = timeUntilCheck();  // the user may have asked meanwhile
        if (delay > 0ns) continue;
        co_await announceUpdate();
        delay = interval;
    }
}

Task<void> UpdateController::announceUpdate() {
    try {
        UpdateCheck result = co_await check();
        if (result.update) announce(std::move(result));
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        // What the user has not asked for does not trouble them with its failures.
        co_return;
    }
}

void UpdateController::announce(UpdateCheck found) {
    const std::string version = found.update->packageVersion();
    const bool isKnown = services_.state.string(stateKey::skippedUpdate) == version || window_.isOpen();
    if (isKnown) return;
    const std::string name = "Ovrin " + found.update->version;
    services_.notifications.add({.identifier = Uuid::random().text(),
                                 .title = "有新版本可用",
                                 .body = name + " 可供安装。点按此通知查看，或从菜单选择“检查更新…”。",
                                 .activated = [this, found = std::move(found)] { open(found); }});
}

Task<UpdateCheck> UpdateController::check() {
    UpdateCheck result = co_await source_.check();
    try {
        services_.state.setString(stateKey::lastUpdateCheck, iso8601Text(services_.clock()));
    } catch (const Error&) {
        // Forgotten, it is made once more than necessary.
    }
    co_return result;
}

void UpdateController::open(std::optional<UpdateCheck> found) {
    if (!window_.isOpen()) {
        window_.open([this, &found](const auto& requests) {
            UpdateViewModel::Services services{.loop = services_.loop,
                                               .source = source_,
                                               .installer = services_.installer,
                                               .state = services_.state,
                                               .toasts = services_.toasts,
                                               .versionDisplay = versionDisplay(),
                                               .check = [this] { return check(); }};
            auto viewModel = std::make_shared<UpdateViewModel>(std::move(services), std::move(found));
            auto window = makeWindow_(*viewModel, requests.unlessClosed([this] { window_.close(); }));
            return typename decltype(window_)::Content{.viewModel = std::move(viewModel), .window = std::move(window)};
        });
    }
    window_.window().present();
}

}  // namespace ovrin
