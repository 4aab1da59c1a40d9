#include "updates/update_source.h"

#include <algorithm>
#include <csignal>
#include <fstream>
#include <iterator>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/files.h"
#include "base/run_loop.h"
#include "fakes/child_process.h"
#include "fakes/loopback_server.h"
#include "fakes/temporary_directory.h"
#include "platform/linux/network/url_session_http_client.h"
#include "platform/linux/packages/downloaded_packages.h"
#include "platform/linux/packages/dpkg_system.h"

namespace ovrin {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr std::size_t generous = std::size_t{16} << 20U;  // bytes

class ThisMachine final : public PackageSystem {
public:
    Description describe() const override {
        return {.distribution = "debian", .release = "12", .architecture = "amd64", .ownsProgram = true};
    }
};

void write(const fs::path& file, std::string_view bytes) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
}

std::string read(const fs::path& file) {
    return files::readFile(file, generous);
}

std::string replaced(std::string text, std::string_view what, std::string_view by) {
    return text.replace(text.find(what), what.size(), by);
}

std::string redirect(const std::string& target) {
    return httpResponse("", "302 Found", "Location: " + target + "\r\n");
}

// The way of an update from the script that publishes it to the verified file, over a server with TLS.
class UpdateSourceTest : public testing::Test {
protected:
    UpdateSourceTest() {
        write(folder.path() / "authorities.pem", authority.certificate());
        configuration.feedURL = server.url("/feed.xml");
        configuration.publicKey = publish({"new-key", key()});
    }

    std::string key() const { return folder.path() / "key.pem"; }

    // Runs the publishing script and gives what it prints.
    std::string publish(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"python3", OVRIN_SOURCE_DIR "/tools/make_update_feed"});
        ChildProcess script({.arguments = std::move(arguments), .environment = {"PATH=/usr/bin:/bin"}});
        std::string line = script.readLine();
        EXPECT_EQ(script.waitForEnd(), 0);
        return line;
    }

    fs::path makePackage(const std::string& version) {
        const fs::path content = folder.path() / ("ovrin-" + version);
        fs::create_directories(content / "DEBIAN");
        write(content / "DEBIAN" / "control", "Package: ovrin\nVersion: " + version +
                                                  "\nArchitecture: amd64\nMaintainer: Test <test@localhost>\n"
                                                  "Description: Test\n more about it\n");
        ChildProcess builder({.arguments = {"dpkg-deb", "--root-owner-group", "--build", content.string()},
                              .environment = {"PATH=/usr/bin:/bin"}});
        EXPECT_EQ(builder.waitForEnd(), 0);
        return content.string() + ".deb";
    }

    // Makes a package and puts it and its feed on the server.
    void publishVersion(const std::string& version) {
        const fs::path package = makePackage(version);
        publish({"add", folder.path() / "feed.xml", package, "--key", key(), "--url", server.url("/ovrin.deb"),
                 "--distribution", "debian", "--release", "12"});
        feed = read(folder.path() / "feed.xml");
        bytes = read(package);
        serve("/feed.xml", httpResponse(feed));
        serve("/ovrin.deb", httpResponse(bytes));
    }

    UpdateCheck check() { return loop.complete(source().check()); }
    std::shared_ptr<UpdatePackage> download() {
        return loop.complete([](AsyncStream<UpdateDownload> steps) -> Task<std::shared_ptr<UpdatePackage>> {
            while (true) {
                std::optional<UpdateDownload> step = co_await steps.next();
                if (step.value().package) co_return step->package;
            }
        }(source().download(check().update.value())));
    }
    template <typename Act>
    std::string failure(Act act) {
        try {
            act();
        } catch (const Error& error) {
            EXPECT_EQ(fileCount(), 0) << "nothing is left behind";
            return error.errorDescription();
        }
        return "";
    }
    std::string checkFailure() {
        return failure([this] { check(); });
    }
    std::string downloadFailure() {
        return failure([this] { download(); });
    }
    long fileCount() const { return fs::exists(downloads) ? std::distance(fs::directory_iterator(downloads), {}) : 0; }

    UpdateSource source() {
        return {configuration, {.loop = client.loop(), .http = client, .packages = packages, .system = system}};
    }
    void answer(LoopbackServer::Connection& connection) {
        for (std::string request = connection.readRequest(); !request.empty(); request = connection.readRequest()) {
            const std::string path = request.substr(4, request.find(' ', 4) - 4);
            connection.send(response(path));
        }
    }
    std::string response(const std::string& path) {
        const std::lock_guard lock(mutex);
        return pages.contains(path) ? pages.at(path) : httpResponse("", "404 Not Found");
    }
    void serve(const std::string& path, std::string response) {
        const std::lock_guard lock(mutex);
        pages[path] = std::move(response);
    }

    TemporaryDirectory folder;
    const fs::path downloads = folder.path() / "cache" / "downloads";
    TestAuthority authority;
    std::mutex mutex;
    std::map<std::string, std::string> pages;  // whole responses by path; guarded by the mutex
    LoopbackServer server{{.identity = authority.issue("IP:127.0.0.1")},
                          [this](LoopbackServer::Connection& connection) { answer(connection); }};
    UpdateConfiguration configuration{.feedURL = "", .publicKey = "", .version = "1.0", .build = "5"};
    std::string feed;
    std::string bytes;  // of the package
    DownloadedPackages packages{downloads};
    ThisMachine system;
    RunLoop loop;
    URLSessionHTTPClient client{Environment({{"SSL_CERT_FILE", folder.path() / "authorities.pem"}})};
};

TEST_F(UpdateSourceTest, WhatThePublishingScriptSignsArrivesVerifiedInAPrivateFile) {
    publishVersion("1.0-6");
    const std::shared_ptr<UpdatePackage> package = download();
    EXPECT_EQ(read(package->path()), bytes);
    EXPECT_EQ(package->control(), (PackageControl{.package = "ovrin", .version = "1.0-6", .architecture = "amd64"}));
    struct stat file {};
    struct stat around {};
    ::stat(package->path().c_str(), &file);
    ::stat(downloads.c_str(), &around);
    EXPECT_EQ(file.st_mode & 0777U, 0600U);
    EXPECT_EQ(around.st_mode & 0777U, 0700U);
    for (const std::string& request : server.requests()) {
        EXPECT_THAT(request, AllOf(HasSubstr("\r\nUser-Agent: Ovrin/"), Not(HasSubstr("uthorization"))));
        EXPECT_EQ(std::count(request.begin(), request.end(), '\n'), 6) << "no header of ours beside it: " << request;
    }
    fs::rename(makePackage("1.0-7"), package->path());
    EXPECT_THROW(package->path(), Error) << "another file in its place is not handed over";
}

TEST_F(UpdateSourceTest, NothingButTheSignedPackageIsTaken) {
    publishVersion("1.0-6");
    std::string flipped = bytes;
    flipped[flipped.size() / 2] ^= 1;
    serve("/ovrin.deb", httpResponse(flipped));
    EXPECT_EQ(downloadFailure(), "安装包的签名无效，可能已被篡改，已拒绝安装。");
    serve("/ovrin.deb", httpResponse(bytes));
    configuration.publicKey = publish({"new-key", folder.path() / "other.pem"});
    EXPECT_EQ(downloadFailure(), "安装包的签名无效，可能已被篡改，已拒绝安装。");
    configuration.publicKey = "no key";
    EXPECT_EQ(downloadFailure(), "此版本的更新公钥无效。");
}

TEST_F(UpdateSourceTest, ADiskThatTakesNothingIsTold) {
    publishVersion("1.0-6");
    fs::create_directories(downloads.parent_path());
    write(downloads, "a file where the folder should be");
    EXPECT_THROW(download(), Error);
    fs::remove(downloads);
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    rlimit tight = before;
    tight.rlim_cur = 100;  // bytes; less than the package
    std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &tight);
    const std::string words = downloadFailure();
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_THAT(words, StartsWith("无法保存安装包："));
}

TEST_F(UpdateSourceTest, AnOldPackageDoesNotComeBackUnderANewNumber) {
    publishVersion("1.0-4");
    EXPECT_EQ(check().update, std::nullopt);
    EXPECT_TRUE(check().isMachineServed);
    serve("/feed.xml", httpResponse(replaced(feed, ":build>4<", ":build>9<")));
    EXPECT_EQ(downloadFailure(), "下载的安装包版本与更新源所说的不符，已拒绝安装。");
}

TEST_F(UpdateSourceTest, RedirectsLeadOnlyToServersWithTLSAndNotOnForever) {
    publishVersion("1.0-6");
    LoopbackServer other({.identity = authority.issue("IP:127.0.0.1")},
                         [this](auto& connection) { answer(connection); });
    LoopbackServer open([this](auto& connection) { answer(connection); });
    serve("/moved.xml", httpResponse(feed));
    serve("/feed.xml", redirect(other.url("/moved.xml")));
    serve("/ovrin.deb", redirect(other.url("/1")));
    for (int i = 1; i < 5; ++i) serve("/" + std::to_string(i), redirect("/" + std::to_string(i + 1)));
    serve("/5", httpResponse(bytes));
    EXPECT_EQ(downloadFailure(), "");
    serve("/5", redirect("/6"));
    serve("/6", httpResponse(bytes));
    EXPECT_EQ(downloadFailure(), "重定向次数过多。");
    for (const std::string& target :
         {open.url("/moved.xml"), std::string("file:///etc/passwd"), std::string("ftp://x/")}) {
        serve("/feed.xml", redirect(target));
        EXPECT_EQ(checkFailure(), "服务器要求转到不安全的地址（不是 HTTPS），已拒绝。") << target;
    }
    EXPECT_EQ(open.connectionCount(), 0);
    serve("/feed.xml", redirect("/feed.xml"));
    EXPECT_EQ(checkFailure(), "重定向次数过多。");
}

TEST_F(UpdateSourceTest, OnlyLeftoversOfDownloadsAreRemoved) {
    packages.removeLeftovers();  // there is no folder yet
    const std::unique_ptr<UpdatePackage> used = packages.make();
    packages.make()->keep();
    write(downloads / "notes.txt", "");
    EXPECT_EQ(fileCount(), 3);
    DownloadedPackages(downloads).removeLeftovers();
    EXPECT_EQ(fileCount(), 2);
    EXPECT_NO_THROW(used->path());
    used->append("no package");
    EXPECT_THROW(used->control(), Error);
}

TEST(DpkgSystemTest, DescribesThisMachineAndWhatItDidNotInstall) {
    const PackageSystem::Description machine = DpkgSystem().describe();
    const std::string release = read("/etc/os-release");
    EXPECT_THAT(release, HasSubstr("\nID=" + machine.distribution));
    EXPECT_THAT(release, HasSubstr("\nVERSION_ID=\"" + machine.release + "\""));
    EXPECT_FALSE(machine.architecture.empty());
    EXPECT_FALSE(machine.ownsProgram);
}

}  // namespace
}  // namespace ovrin
