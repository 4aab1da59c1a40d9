#include "settings/settings_view_model.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/watch.h"
#include "base/worker_executor.h"
#include "platform/synthetic_keyboard.h"
#include "settings/application_actions.h"
#include "storage/history_store.h"

namespace ovrin {
namespace {

SettingsSection neighbour(SettingsSection section, std::ptrdiff_t distance) {
    const auto count = std::ssize(allSettingsSections);
    const auto position = std::ranges::find(allSettingsSections, section) - allSettingsSections.begin();
    return allSettingsSections.at(static_cast<std::size_t>((position + distance + count) % count));
}

SettingsViewModel::ConnectionStatus connectionStatus(const SettingsStore::ConnectionState& state) {
    using State = SettingsStore::ConnectionState::Kind;
    using Kind = SettingsViewModel::ConnectionStatus::Kind;
    switch (state.kind) {
        case State::testing:
            return {.kind = Kind::active, .pill = "正在连接"};
        case State::success:
            return {.kind = Kind::success, .pill = "连接成功"};
        case State::failed:
            return {.kind = Kind::error, .pill = "失败", .message = state.message};
        case State::idle:
            break;
    }
    return {.kind = Kind::neutral, .pill = "尚未测试"};
}

}  // namespace

SettingsViewModel::SettingsViewModel(Services services)
    : services_(std::move(services)),
      store_(services_.store),
      localServices_(services_.store.loop, services_.store.ioLoop, services_.store.http,
                     LocalServiceFinder::ports(services_.store.environment())),
      connectionState_(watch(store_.connectionState(),
                             [this](const SettingsStore::ConnectionState& state) {
                                 connectionStatus_.set(ovrin::connectionStatus(state));
                             })),
      inspection_(services_.store.loop) {
    refresh();
}

void SettingsViewModel::select(SettingsSection section) {
    movesForward_ = section > selection_.value();
    selection_.set(section);
}

void SettingsViewModel::selectNext() {
    select(neighbour(selection_.value(), 1));
}

void SettingsViewModel::selectPrevious() {
    select(neighbour(selection_.value(), -1));
}

void SettingsViewModel::refresh() {
    store_.refreshLoginItem();
    accessibility_.set(services_.keyboard.isTrusted()
                           ? Accessibility{.isTrusted = true, .detail = "已授权", .pill = "已授权"}
                           : Accessibility{.detail = "此会话不能模拟按键，划词与替换不可用", .pill = "不可用"});
}

Task<void> SettingsViewModel::inspect() {
    std::vector<Capability> found = co_await services_.inspectionWorker.run(services_.inspectSession);
    capabilities_.set(std::move(found));
}

void SettingsViewModel::clearHistory() {
    services_.history.deleteAll();
}

bool SettingsViewModel::isUpdateConfigured() const {
    return services_.application.isUpdateConfigured();
}

void SettingsViewModel::checkForUpdates() {
    services_.application.checkForUpdates();
}

}  // namespace ovrin
