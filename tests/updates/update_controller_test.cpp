#include "updates/update_controller.h"

#include <chrono>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/virtual_loop.h"
#include "fakes/deferred.h"
#include "fakes/fake_http_client.h"
#include "fakes/fake_presenters.h"
#include "fakes/temporary_directory.h"
#include "fakes/update_feed_text.h"
#include "storage/state_key.h"

namespace ovrin {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Events = std::vector<std::string>;

// Packages that only say what the test wants.
class FakePackages final : public UpdatePackages {
public:
    explicit FakePackages(Journal& journal) : journal_(journal) {}

    bool isSigned = true;
    PackageControl control{.package = "ovrin", .version = "9.0-1", .architecture = "amd64"};

    std::unique_ptr<UpdatePackage> make() override { return std::make_unique<Package>(*this); }
    void removeLeftovers() override { journal_.add("leftovers removed"); }

private:
    class Package final : public UpdatePackage {
    public:
        explicit Package(FakePackages& all) : all_(all) {}
        Package(const Package&) = delete;
        Package& operator=(const Package&) = delete;
        ~Package() override { all_.journal_.add(isKept_ ? "package kept" : "package removed"); }
        void append(std::string_view bytes) override { all_.journal_.add("append " + std::string(bytes)); }
        bool isSigned(const std::string& signature, const std::string& key) const override {
            all_.journal_.add("verify " + signature + " by " + key);
            return all_.isSigned;
        }
        PackageControl control() const override { return all_.control; }
        std::filesystem::path path() const override { return "/downloads/ovrin.deb"; }
        void keep() override { isKept_ = true; }

    private:
        FakePackages& all_;
        bool isKept_ = false;
    };

    Journal& journal_;
};

class FakeSystem final : public PackageSystem {
public:
    Description description{.distribution = "debian", .release = "12", .architecture = "amd64", .ownsProgram = true};
    Description describe() const override { return description; }
};

class FakeInstaller final : public PackageInstaller {
public:
    explicit FakeInstaller(Journal& journal) : journal_(journal) {}
    Deferred<PackageHandOver> outcome;

    Task<PackageHandOver> install(std::filesystem::path package) override {
        journal_.add("install " + package.string());
        return outcome.result();
    }
    void openPage(const std::string& url) override { journal_.add("open " + url); }

private:
    Journal& journal_;
};

class FakeWindow final : public UpdateWindow {
public:
    explicit FakeWindow(Journal& journal) : journal_(journal) {}
    void present() override { journal_.add("window"); }

private:
    Journal& journal_;
};

struct UpdateControllerTest : testing::Test {
    // A check that still waits comes to its end.
    ~UpdateControllerTest() override {
        controller_.reset();
        loop.runPosted();
    }

    std::unique_ptr<UpdateWindow> makeWindow(UpdateViewModel& model, std::function<void()> requestClose) {
        window = &model;
        close = std::move(requestClose);
        return std::make_unique<FakeWindow>(journal);
    }

    UpdateController& controller() {
        if (!controller_) {
            controller_.emplace(
                configuration,
                UpdateController::Services{
                    .loop = loop,
                    .source = {.loop = loop, .http = http, .packages = packages, .system = system},
                    .installer = installer,
                    .state = state,
                    .toasts = toasts,
                    .notifications = notifications,
                    .clock = [this] { return start + std::chrono::floor<std::chrono::seconds>(loop.now() - zero); }},
                [this](auto& model, auto requestClose) { return makeWindow(model, std::move(requestClose)); });
        }
        return *controller_;
    }
    void willOffer(const FeedItem& item) { http.willAnswer({.chunks = {feedDocument(feedItem(item))}}); }
    void check() {
        controller().checkForUpdates();
        loop.runPosted();
        journal.take();
    }
    UpdatePhase phase() const { return window->status().value().phase; }
    std::string message() const { return window->status().value().message; }
    Events advance(EventLoop::Duration duration) {
        loop.advance(duration);
        return journal.take();
    }

    static constexpr EventLoop::TimePoint zero{};
    const Timestamp start = *parseIso8601("2026-11-24T10:00:00Z");
    UpdateConfiguration configuration{
        .feedURL = "https://example.com/feed.xml", .publicKey = "key", .version = "1.2", .build = "34"};
    VirtualLoop loop;
    Journal journal;
    TemporaryDirectory directory;
    DefaultsStore state{directory.path() / "state.json"};
    FakeHTTPClient http;
    FakePackages packages{journal};
    FakeSystem system;
    FakeInstaller installer{journal};
    FakeToastPresenter toasts{journal};
    FakeNotificationCenter notifications{journal};
    UpdateViewModel* window = nullptr;
    std::function<void()> close;

private:
    std::optional<UpdateController> controller_;
};

TEST_F(UpdateControllerTest, AnUnconfiguredBuildSaysSoAndNeverAsks) {
    configuration.publicKey = "$(KEY)";
    controller().start();
    controller().checkForUpdates();
    EXPECT_THAT(advance(100h), ElementsAre("toast exclamationmark.triangle: 自动更新尚未配置"));
    EXPECT_THAT(http.requests(), IsEmpty());
}

TEST_F(UpdateControllerTest, OfItsOwnAccordItAsksOnceADayAndOnlyTellsOfAnUpdate) {
    controller().start();
    http.willFail("找不到服务器。");
    EXPECT_THAT(advance(1h), ElementsAre("leftovers removed"));
    ASSERT_EQ(http.requests().size(), 1U);
    EXPECT_EQ(http.requests()[0].redirects, HTTPRedirects::anyHTTPS);
    EXPECT_EQ(http.requests()[0].headers, HTTPHeaders());
    EXPECT_FALSE(state.contains(stateKey::lastUpdateCheck)) << "the next launch may be luckier";
    willOffer({.version = "1.2", .build = "34"});
    EXPECT_THAT(advance(24h), IsEmpty());
    EXPECT_EQ(http.requests().size(), 2U);
    willOffer({});
    EXPECT_THAT(advance(24h), ElementsAre(HasSubstr("notification: 有新版本可用 | Ovrin 9.0 可供安装。")));

    notifications.lastActivated();
    EXPECT_THAT(journal.take(), ElementsAre("window"));
    EXPECT_EQ(phase(), UpdatePhase::available) << "without asking again";
    window->skipVersion();
    close();
    willOffer({});
    EXPECT_THAT(advance(24h), IsEmpty()) << "a skipped version is not announced";
    EXPECT_EQ(http.requests().size(), 4U);
    willOffer({.version = "9.1"});
    EXPECT_THAT(advance(24h), ElementsAre(HasSubstr("Ovrin 9.1")));
}

TEST_F(UpdateControllerTest, TheDayCountsFromTheLastCheckWhoeverMadeIt) {
    state.setString(stateKey::lastUpdateCheck, "2026-11-24T00:00:00Z");
    controller().start();
    advance(13h);
    EXPECT_EQ(http.requests().size(), 0U);
    willOffer({});
    check();
    advance(23h);
    EXPECT_EQ(http.requests().size(), 1U);
    http.willHang();
    advance(1h);
    EXPECT_EQ(http.requests().size(), 2U);
}

TEST_F(UpdateControllerTest, ACheckThatTheUserAskedForTellsEveryOutcome) {
    http.willAnswer({.statusCode = 404});
    check();
    EXPECT_EQ(phase(), UpdatePhase::failed);
    EXPECT_EQ(message(), "更新服务器返回了错误（HTTP 404）。");
    willOffer({.version = "1.2", .build = "34"});
    window->retry();
    loop.runPosted();
    EXPECT_EQ(phase(), UpdatePhase::upToDate);
    EXPECT_EQ(message(), "当前为版本 1.2（34）。");
    http.willAnswer({.chunks = {feedDocument(feedItem({.release = "13"}) + feedItem({.architecture = "arm64"}))}});
    check();
    EXPECT_EQ(phase(), UpdatePhase::upToDate);
    EXPECT_THAT(message(), HasSubstr("没有适用于此系统（debian 12，amd64）的软件包"));
    http.willAnswer({.chunks = {feedDocument(feedItem({.version = "1.3"}) + feedItem({.version = "1.10"}) +
                                             feedItem({.version = "1.9"}))}});
    check();
    EXPECT_EQ(phase(), UpdatePhase::available);
    EXPECT_EQ(window->update()->version, "1.10");
    EXPECT_EQ(window->updateDetails(), "2026年11月24日 · 3 B");
    // A server that sends without end is left at the bound.
    http.willAnswer(
        {.chunks = {std::string(maximumUpdateFeedSize, ' '), " "}, .ending = FakeHTTPClient::Ending::staysOpen});
    check();
    EXPECT_EQ(message(), "更新源过大（超过 1 MB）。");
    EXPECT_TRUE(http.isBodyDropped());
}

TEST_F(UpdateControllerTest, AnUpdateIsVerifiedBeforeItIsHandedOver) {
    willOffer({});
    check();
    http.willAnswer({.chunks = {"d", "eb"}});
    window->install();
    loop.runPosted();
    EXPECT_THAT(journal.take(),
                ElementsAre("append d", "append eb", "verify c2lnbmF0dXJl by key", "install /downloads/ovrin.deb"));
    EXPECT_EQ(phase(), UpdatePhase::handingOver);
    close();
    loop.runPosted();
    EXPECT_THAT(journal.take(), ElementsAre("package kept")) << "the installer still reads it";
}

TEST_F(UpdateControllerTest, ADownloadCanBeCancelledAndTriedAgain) {
    willOffer({});
    check();
    http.willAnswer({.chunks = {"d"}, .ending = FakeHTTPClient::Ending::staysOpen});
    window->install();
    loop.runPosted();
    EXPECT_EQ(phase(), UpdatePhase::downloading);
    EXPECT_EQ(window->status().value().received, 1U);
    controller().checkForUpdates();
    EXPECT_EQ(phase(), UpdatePhase::downloading) << "what it is at is not disturbed";
    window->cancelDownload();
    loop.runPosted();
    EXPECT_EQ(phase(), UpdatePhase::available);
    EXPECT_THAT(journal.take(), ElementsAre("append d", "window", "package removed"));
    http.willAnswer({.chunks = {"deb"}});
    installer.outcome.fail(Error("已取消安装。"));
    window->install();
    loop.runPosted();
    EXPECT_EQ(message(), "已取消安装。");
    http.willAnswer({.chunks = {"deb"}});
    installer.outcome.succeed(PackageHandOver::installed);
    window->retry();
    loop.runPosted();
    EXPECT_EQ(phase(), UpdatePhase::handedOver);
    EXPECT_EQ(message(), "重新启动 Ovrin 后生效。");
}

TEST_F(UpdateControllerTest, WhatIsNotTheSignedAndPromisedPackageIsNeverHandedOver) {
    const auto refusal = [this](std::vector<std::string> chunks) {
        willOffer({});
        check();
        http.willAnswer({.chunks = std::move(chunks)});
        window->install();
        loop.runPosted();
        EXPECT_EQ(phase(), UpdatePhase::failed);
        const Events events = journal.take();
        EXPECT_EQ(events.back(), "package removed");
        return message();
    };
    EXPECT_EQ(refusal({"de"}), "安装包没有下载完整，请重试。");
    EXPECT_EQ(refusal({"deb", "!"}), "下载的安装包比更新源所说的大，已拒绝安装。");
    packages.isSigned = false;
    EXPECT_EQ(refusal({"deb"}), "安装包的签名无效，可能已被篡改，已拒绝安装。");
    packages.isSigned = true;
    packages.control.version = "1.1-30";
    EXPECT_EQ(refusal({"deb"}), "下载的安装包版本与更新源所说的不符，已拒绝安装。");
    packages.control = {.package = "other", .version = "9.0-1", .architecture = "amd64"};
    EXPECT_EQ(refusal({"deb"}), "下载的安装包不是 Ovrin，已拒绝安装。");
    packages.control = {.package = "ovrin", .version = "9.0-1", .architecture = "arm64"};
    EXPECT_EQ(refusal({"deb"}), "下载的安装包不适用于此电脑的架构，已拒绝安装。");
}

TEST_F(UpdateControllerTest, ACopyWithoutAPackageIsOfferedThePage) {
    system.description.ownsProgram = false;
    willOffer({});
    check();
    EXPECT_EQ(phase(), UpdatePhase::available);
    EXPECT_THAT(message(), HasSubstr("不是由软件包安装的"));
    window->install();
    window->openPage();
    EXPECT_THAT(journal.take(), ElementsAre("open https://example.com/page"));
    EXPECT_EQ(http.requests().size(), 1U);
}

}  // namespace
}  // namespace ovrin
