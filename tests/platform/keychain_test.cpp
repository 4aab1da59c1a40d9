// The keychain against a real secret service (gnome-keyring) on a bus of its own, and against none.
#include <chrono>
#include <csignal>
#include <fstream>
#include <future>
#include <memory>
#include <stop_token>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "base/files.h"
#include "fakes/private_bus.h"
#include "fakes/silent_bus.h"
#include "fakes/temporary_directory.h"
#include "platform/linux/secrets/keychain_status.h"
#include "platform/linux/secrets/linux_keychain.h"
#include "storage/keychain_store.h"

namespace ovrin {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Optional;

const KeychainItem apiKey{.service = "com.quel.ovrin", .account = "deepseek-api-key"};
const KeychainItem headers{.service = "com.quel.ovrin", .account = "model-custom-headers"};

class KeychainTest : public ::testing::Test {
protected:
    void TearDown() override { ::unsetenv("DBUS_SESSION_BUS_ADDRESS"); }

    // The library finds the bus through the process's own environment.
    LinuxKeychain keychainOn(const std::string& address, SecretService::Patience patience = {}) const {
        ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
        return {SecretService(SessionBus::ofProcess, patience), file};
    }

    LinuxKeychain keychainWithoutBus() const { return {SecretService(SessionBus::none, {}), file}; }

    // Starts a service and waits until it answers on the bus.
    std::unique_ptr<ChildProcess> startService(const PrivateBus& bus, bool unlocked) const {
        ChildProcess::Setup setup{
            .arguments = {"gnome-keyring-daemon", "--foreground", "--components=secrets"},
            .environment = {"HOME=" + home.path().string(), "XDG_RUNTIME_DIR=" + home.path().string(),
                            "DBUS_SESSION_BUS_ADDRESS=" + bus.address()}};
        if (unlocked) {
            setup.arguments.emplace_back("--unlock");
            setup.input = "password";
        }
        auto service = std::make_unique<ChildProcess>(setup);
        ::setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1);
        const SecretService client(SessionBus::ofProcess, {});
        const auto answers = [&] {
            const KeychainStatus status = client.find(apiKey).status;
            return status == keychainSuccess || status == keychainItemNotFound || status == keychainLocked;
        };
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!answers() && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
        return service;
    }

    std::string fileContent() const { return files::readFile(file, 1U << 20U); }

    static mode_t modeOf(const std::filesystem::path& path) {
        struct stat status {};
        ::stat(path.c_str(), &status);
        return status.st_mode & 07777U;
    }

    TemporaryDirectory home;
    std::filesystem::path file = home.path() / "data" / "Ovrin" / "keychain.json";
};

TEST_F(KeychainTest, TheServiceKeepsSecretsAndTheFileStaysAway) {
    const PrivateBus bus;
    const auto service = startService(bus, true);
    LinuxKeychain keychain = keychainOn(bus.address());
    EXPECT_EQ(keychain.copyMatching(apiKey).status, keychainItemNotFound);
    EXPECT_EQ(keychain.update(apiKey, "one"), keychainItemNotFound);
    EXPECT_EQ(keychain.add(apiKey, "sk-密钥"), keychainSuccess);
    EXPECT_EQ(keychain.copyMatching(apiKey).data, "sk-密钥");
    EXPECT_EQ(keychain.copyMatching(headers).status, keychainItemNotFound);
    EXPECT_EQ(keychain.update(apiKey, std::string("\xFF\0x", 3)), keychainSuccess);
    EXPECT_EQ(keychainOn(bus.address()).copyMatching(apiKey).data, std::string("\xFF\0x", 3));
    EXPECT_EQ(keychain.remove(apiKey), keychainSuccess);
    EXPECT_EQ(keychain.remove(apiKey), keychainItemNotFound);
    EXPECT_EQ(keychain.copyMatching(apiKey).status, keychainItemNotFound);
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(KeychainTest, WithoutAServiceAPrivateFileKeepsSecrets) {
    const PrivateBus bus;  // nobody on it offers the service
    for (const std::string& address : {std::string("unix:path=/nowhere"), bus.address()}) {
        LinuxKeychain keychain = keychainOn(address);
        EXPECT_TRUE(keychain.isKeptInFile());
        EXPECT_EQ(keychain.copyMatching(apiKey).status, keychainItemNotFound);
        EXPECT_EQ(keychain.update(apiKey, "one"), keychainItemNotFound);
        EXPECT_EQ(keychain.add(apiKey, "one"), keychainSuccess);
        EXPECT_EQ(keychain.update(apiKey, "two"), keychainSuccess);
        EXPECT_EQ(keychain.add(headers, "{}"), keychainSuccess);
        EXPECT_EQ(keychainOn(address).copyMatching(apiKey).data, "two");
        EXPECT_EQ(modeOf(file), 0600U);
        EXPECT_EQ(modeOf(file.parent_path()), 0700U);
        EXPECT_EQ(keychain.remove(apiKey), keychainSuccess);
        EXPECT_EQ(keychain.remove(apiKey), keychainItemNotFound);
        EXPECT_EQ(keychain.copyMatching(apiKey).status, keychainItemNotFound);
        EXPECT_EQ(keychain.copyMatching(headers).data, "{}");
        EXPECT_EQ(keychain.remove(headers), keychainSuccess);
    }
}

TEST_F(KeychainTest, WhatWasChangedWithoutTheServiceMovesIntoItAtTheFirstRead) {
    const PrivateBus bus;
    const auto service = startService(bus, true);
    LinuxKeychain online = keychainOn(bus.address());
    LinuxKeychain offline = keychainWithoutBus();
    ASSERT_EQ(online.add(headers, "{}"), keychainSuccess);
    ASSERT_EQ(offline.add(apiKey, "sk-moves"), keychainSuccess);
    ASSERT_EQ(offline.remove(headers), keychainItemNotFound);
    EXPECT_EQ(online.copyMatching(apiKey).data, "sk-moves");
    EXPECT_EQ(online.copyMatching(headers).status, keychainItemNotFound);
    EXPECT_THAT(fileContent(), AllOf(Not(HasSubstr("sk-moves")), Not(HasSubstr(headers.account))));
    std::filesystem::remove(file);
    EXPECT_EQ(online.copyMatching(apiKey).data, "sk-moves");
    EXPECT_EQ(online.copyMatching(headers).status, keychainItemNotFound);

    // The service's is the newer one.
    ASSERT_EQ(offline.add(apiKey, "sk-older"), keychainSuccess);
    EXPECT_EQ(online.copyMatching(apiKey).data, "sk-moves");
    EXPECT_THAT(fileContent(), Not(HasSubstr("sk-older")));
    EXPECT_EQ(offline.copyMatching(apiKey).status, keychainItemNotFound);
}

TEST_F(KeychainTest, ALockedCollectionIsAnErrorAndNoReasonToWriteAFile) {
    const PrivateBus bus;
    {
        const auto service = startService(bus, true);
        ASSERT_EQ(keychainOn(bus.address()).add(apiKey, "secret"), keychainSuccess);
    }
    const auto service = startService(bus, false);  // and nobody who could ask for the password
    LinuxKeychain keychain = keychainOn(bus.address());
    EXPECT_EQ(keychain.copyMatching(apiKey).status, keychainLocked);
    EXPECT_NE(keychain.update(apiKey, "sk-new"), keychainSuccess);
    EXPECT_NE(keychain.add(headers, "sk-new"), keychainSuccess);
    EXPECT_NE(keychain.remove(apiKey), keychainSuccess);
    EXPECT_FALSE(keychain.isKeptInFile());
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(KeychainTest, AProgramThatClosesWaitsForNoSecret) {
    const PrivateBus bus;
    const auto service = startService(bus, true);
    service->signal(SIGSTOP);  // it keeps its name and answers nobody
    constexpr std::chrono::hours patience{1};
    std::stop_source closing;
    const SecretService client(SessionBus::ofProcess, {.service = patience, .user = patience}, closing.get_token());
    const auto reading = std::async(std::launch::async, [&client] { return client.find(apiKey).status; });
    closing.request_stop();
    reading.wait();
    EXPECT_EQ(client.find(headers).status, keychainTimedOut);
    EXPECT_EQ(client.store(headers, "{}"), keychainTimedOut);
}

TEST_F(KeychainTest, AServiceThatDoesNotAnswerIsGivenUp) {
    const SilentBus bus;
    LinuxKeychain keychain =
        keychainOn(bus.address(), {.service = std::chrono::milliseconds(1), .user = std::chrono::milliseconds(1)});
    EXPECT_EQ(keychain.copyMatching(apiKey).status, keychainTimedOut);
    EXPECT_EQ(keychain.add(apiKey, "sk-secret"), keychainTimedOut);
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(KeychainTest, ADamagedFileIsReportedAndKeptAside) {
    LinuxKeychain keychain = keychainWithoutBus();
    ASSERT_EQ(keychain.add(apiKey, "one"), keychainSuccess);
    std::ofstream(file) << R"({"com.quel.ovrin":{"deepseek-api-key":"sk-half)";
    EXPECT_EQ(keychain.copyMatching(apiKey).status, keychainDamagedFile);
    EXPECT_EQ(keychain.add(apiKey, "two"), keychainSuccess);
    EXPECT_EQ(keychain.copyMatching(apiKey).data, "two");
    EXPECT_THAT(files::readFile(file.string() + ".unreadable", 1000), HasSubstr("sk-half"));
    EXPECT_EQ(keychain.add(headers, "\xFF"), keychainInvalidData);
    EXPECT_EQ(keychain.remove(apiKey), keychainSuccess);
    EXPECT_FALSE(std::filesystem::exists(file.string() + ".unreadable")) << "it holds the key as well";
}

TEST_F(KeychainTest, FailuresOfTheFileNameTheReasonAndNoSecret) {
    std::ofstream(home.path() / "data") << "no folder";
    LinuxKeychain keychain = keychainWithoutBus();
    KeychainStore store(keychain);
    try {
        store.writeString("sk-secret", apiKey.account);
        FAIL();
    } catch (const KeychainStore::KeychainError& error) {
        EXPECT_EQ(error.errorDescription(), "无法读写密钥文件：路径不是有效的文件。");
    }
    EXPECT_EQ(keychain.message(keychainItemNotFound), std::nullopt);
    EXPECT_THAT(keychain.message(keychainLocked), Optional(HasSubstr("锁定")));
}

TEST(SessionBusTest, IsFoundInTheEnvironment) {
    const TemporaryDirectory runtime;
    using Variables = Environment::Variables;
    const Environment withoutSocket(Variables{{"XDG_RUNTIME_DIR", runtime.path()}});
    EXPECT_EQ(sessionBus(Environment()), SessionBus::none);
    EXPECT_EQ(sessionBus(withoutSocket), SessionBus::none);
    EXPECT_EQ(sessionBus(Environment(Variables{{"DBUS_SESSION_BUS_ADDRESS", "unix:x"}})), SessionBus::ofProcess);
}

}  // namespace
}  // namespace ovrin
