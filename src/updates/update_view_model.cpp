#include "updates/update_view_model.h"

#include <array>
#include <cmath>
#include <ctime>
#include <utility>

#include "base/error.h"
#include "base/number_text.h"
#include "platform/toast_presenter.h"
#include "storage/state_key.h"

namespace ovrin {

namespace {

std::string dateText(Timestamp moment) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(moment);
    std::tm local{};
    ::localtime_r(&seconds, &local);
    return std::to_string(local.tm_year + 1900) + "年" + std::to_string(local.tm_mon + 1) + "月" +
           std::to_string(local.tm_mday) + "日";
}

std::string nameOf(const UpdateItem& item) {
    return "Ovrin " + item.version + (item.build.empty() ? "" : "（" + item.build + "）");
}

// A sentence about it. The closing bracket brings its own space along.
std::string sentence(const UpdateItem& item, const std::string& words) {
    return nameOf(item) + (item.build.empty() ? " " : "") + words;
}

std::string whyNothingFits(const PackageSystem::Description& machine) {
    if (machine.distribution.empty() || machine.release.empty() || machine.architecture.empty()) {
        return "更新源只提供 Debian 软件包，无法用于此系统。";
    }
    return "更新源中没有适用于此系统（" + machine.distribution + " " + machine.release + "，" + machine.architecture +
           "）的软件包。";
}

}  // namespace

UpdateViewModel::UpdateViewModel(Services services, std::optional<UpdateCheck> found)
    : services_(std::move(services)), task_(services_.loop) {
    if (found) {
        showCheck(std::move(*found));
    } else {
        checkAgain();
    }
}

bool UpdateViewModel::isAtWork() const {
    return task_.isRunning();
}

void UpdateViewModel::checkAgain() {
    if (!isAtWork()) task_.replace(lookForUpdate());
}

Task<void> UpdateViewModel::lookForUpdate() {
    show(UpdatePhase::checking, "正在检查更新…", "");
    check_ = {};
    try {
        UpdateCheck result = co_await services_.check();
        showCheck(std::move(result));
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        showFailure("无法检查更新", std::current_exception());
    }
}

void UpdateViewModel::showCheck(UpdateCheck check) {
    check_ = std::move(check);
    if (check_.update) return showOffer();
    const std::string current = "当前为" + services_.versionDisplay + "。";
    show(UpdatePhase::upToDate, "Ovrin 已是最新版本",
         check_.isMachineServed ? current : current + "\n" + whyNothingFits(check_.machine));
}

void UpdateViewModel::showOffer() {
    std::string message = "当前为" + services_.versionDisplay + "。";
    if (!canInstall()) {
        message += "\n此 Ovrin 不是由软件包安装的，请";
        message += hasPage() ? "从下载页面更新。" : "用安装它的方式更新。";
    }
    show(UpdatePhase::available, sentence(*check_.update, "可供安装"), std::move(message));
}

std::string UpdateViewModel::updateDetails() const {
    if (!check_.update) return "";
    const std::string size = byteCountText(check_.update->packageSize);
    return check_.update->date ? dateText(*check_.update->date) + " · " + size : size;
}

void UpdateViewModel::install() {
    if (check_.update && canInstall() && !isAtWork()) task_.replace(downloadAndHandOver(*check_.update));
}

Task<void> UpdateViewModel::downloadAndHandOver(UpdateItem item) {
    try {
        const std::shared_ptr<UpdatePackage> package = co_await downloaded(std::move(item));
        // Whoever gets it may still be reading when this model, or the program, has gone.
        package->keep();
        show(UpdatePhase::handingOver, "安装包已通过验证", "已交给系统的安装程序，请在其中确认。");
        const PackageHandOver handOver = co_await services_.installer.install(package->path());
        showHandOver(handOver);
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        showFailure("更新没有完成", std::current_exception());
    }
}

Task<std::shared_ptr<UpdatePackage>> UpdateViewModel::downloaded(UpdateItem item) {
    const std::string title = "正在下载 " + nameOf(item);
    const std::string whole = byteCountText(item.packageSize);
    const std::uint64_t size = item.packageSize;
    show(UpdatePhase::downloading, title, byteCountText(0) + " / " + whole);
    AsyncStream<UpdateDownload> download = services_.source.download(std::move(item));
    while (true) {
        const std::optional<UpdateDownload> progress = co_await download.next();
        if (!progress) throw Error("安装包没有下载完整，请重试。");
        if (progress->package) co_return progress->package;
        if (progress->received < size) {
            show(UpdatePhase::downloading, title, byteCountText(progress->received) + " / " + whole,
                 progress->received);
        } else {
            show(UpdatePhase::verifying, "正在验证安装包…", "");
        }
    }
}

void UpdateViewModel::cancelDownload() {
    const UpdatePhase phase = status_.value().phase;
    if (phase != UpdatePhase::downloading && phase != UpdatePhase::verifying) return;
    task_.cancel();
    showOffer();
}

void UpdateViewModel::showHandOver(PackageHandOver handOver) {
    switch (handOver) {
        case PackageHandOver::installed:
            return show(UpdatePhase::handedOver, sentence(*check_.update, "已安装"), "重新启动 Ovrin 后生效。");
        case PackageHandOver::opened:
            return show(UpdatePhase::handedOver, "安装包已通过验证", "已用系统的安装程序打开，请在其中完成安装。");
        case PackageHandOver::folderShown:
            return show(UpdatePhase::handedOver, "安装包已通过验证",
                        "系统没有可用的安装程序，已打开安装包所在的文件夹。");
    }
}

void UpdateViewModel::retry() {
    if (status_.value().phase != UpdatePhase::failed) return;
    if (check_.update) {
        install();
    } else {
        checkAgain();
    }
}

void UpdateViewModel::skipVersion() {
    if (!check_.update) return;
    try {
        services_.state.setString(stateKey::skippedUpdate, check_.update->packageVersion());
    } catch (const Error& error) {
        services_.toasts.show(error.errorDescription(), "exclamationmark.triangle");
    }
}

void UpdateViewModel::openPage() {
    if (hasPage()) services_.installer.openPage(check_.update->page);
}

void UpdateViewModel::show(UpdatePhase phase, std::string title, std::string message, std::uint64_t received) {
    status_.set({.phase = phase, .title = std::move(title), .message = std::move(message), .received = received});
}

void UpdateViewModel::showFailure(std::string title, const std::exception_ptr& failure) {
    show(UpdatePhase::failed, std::move(title), errorDescription(failure));
}

}  // namespace ovrin
