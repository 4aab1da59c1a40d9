#include "app/tray_notice.h"

#include <chrono>

#include "base/uuid.h"

namespace ovrin {

namespace {

using namespace std::chrono_literals;

// Panels come up at about the time that programs are started with the session.
constexpr auto patienceWithTheTray = 5s;

}  // namespace

TrayNotice::TrayNotice(Surroundings surroundings) : surroundings_(surroundings) {}

TrayNotice::~TrayNotice() {
    surroundings_.loop.cancelTimer(patience_);
}

void TrayNotice::start() {
    patience_ = surroundings_.loop.postAfter(patienceWithTheTray, [this] {
        const auto& visibility = surroundings_.statusItem.visibility();
        if (visibility.value() != StatusItem::Visibility::unknown) return judge(visibility.value());
        answer_ = visibility.onDidChange([this](StatusItem::Visibility answer) { judge(answer); });
    });
}

void TrayNotice::judge(StatusItem::Visibility visibility) {
    const Subscription done = std::move(answer_);
    if (visibility != StatusItem::Visibility::nowhere) return;
    surroundings_.notifications.add({.identifier = Uuid::random().text(),
                                     .title = "Ovrin 已启动",
                                     .body = surroundings_.hotKeys.problem()
                                                 ? "当前桌面没有系统托盘，请使用命令“ovrin do”。"
                                                 : "当前桌面没有系统托盘，请使用快捷键或命令“ovrin do”。"});
}

}  // namespace ovrin
