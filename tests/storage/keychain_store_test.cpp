#include "storage/keychain_store.h"

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/fake_keychain.h"

namespace ovrin {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Optional;

class KeychainStoreTest : public ::testing::Test {
protected:
    std::string failureOf(const std::function<void()>& action) {
        try {
            action();
        } catch (const KeychainStore::KeychainError& error) {
            return error.errorDescription();
        }
        return "";
    }

    FakeKeychain keychain;
    KeychainStore store{keychain};
};

TEST_F(KeychainStoreTest, WritingUpdatesOrElseAdds) {
    store.writeString("one", "account");
    store.writeString("two", "account");
    EXPECT_THAT(keychain.calls, ElementsAre("update account", "add account", "update account"));
    EXPECT_EQ(keychain.items["account"], "two");
    EXPECT_THAT(
        store.cache().resolve("account", []() -> std::optional<std::string> { throw std::logic_error("asked"); }),
        Optional(std::string("two")));
}

TEST_F(KeychainStoreTest, ReadsOncePerAccount) {
    keychain.items["account"] = "secret";
    EXPECT_THAT(store.resolveString("account"), Optional(std::string("secret")));
    EXPECT_EQ(store.resolveString("other"), std::nullopt);
    keychain.items["account"] = "changed elsewhere";
    EXPECT_THAT(store.resolveString("account"), Optional(std::string("secret")));
    EXPECT_EQ(store.resolveString("other"), std::nullopt);
    EXPECT_THAT(keychain.calls, ElementsAre("copyMatching account", "copyMatching other"));
    store.cache().forgetAll();
    EXPECT_THAT(store.resolveString("account"), Optional(std::string("changed elsewhere")));
}

TEST_F(KeychainStoreTest, AFailedReadIsThrownOnceAndThenCountsAsMissing) {
    keychain.failures["copyMatching"] = -25308;
    EXPECT_EQ(failureOf([&] { store.resolveString("account"); }), "密钥环错误：-25308");
    keychain.failures.clear();
    keychain.items["account"] = "secret";
    EXPECT_EQ(store.resolveString("account"), std::nullopt);
    EXPECT_EQ(keychain.calls.size(), 1U);
}

TEST_F(KeychainStoreTest, WhatIsNoTextReadsAsNone) {
    keychain.items["account"] = "\xFF\xFE";
    EXPECT_EQ(store.readString("account"), std::nullopt);
}

TEST_F(KeychainStoreTest, FailedChangesLeaveTheCacheAlone) {
    store.writeString("known", "account");
    keychain.failures = {{"update", -1}, {"remove", -2}};
    keychain.messages[-2] = "钥匙串已锁定";
    EXPECT_EQ(failureOf([&] { store.writeString("sk-new", "account"); }), "密钥环错误：-1");
    EXPECT_EQ(failureOf([&] { store.deleteString("account"); }), "钥匙串已锁定");
    EXPECT_THAT(store.resolveString("account"), Optional(std::string("known")));
    keychain.failures = {{"add", -3}};
    EXPECT_THAT(failureOf([&] { store.writeString("sk-new", "fresh"); }), Not(HasSubstr("sk-new")));
    keychain.failures.clear();
    EXPECT_EQ(store.resolveString("fresh"), std::nullopt);
}

TEST_F(KeychainStoreTest, DeletingMarksAsMissingEvenWhatWasNotThere) {
    store.deleteString("never there");
    keychain.items["never there"] = "made elsewhere";
    EXPECT_EQ(store.resolveString("never there"), std::nullopt);
    store.writeString("text", "account");
    store.deleteString("account");
    EXPECT_EQ(store.resolveString("account"), std::nullopt);
    EXPECT_FALSE(keychain.items.contains("account"));
}

TEST(KeychainMemoryCacheTest, ConcurrentFirstReadsReachTheStoreOnce) {
    KeychainStore::MemoryCache cache;
    std::atomic<int> loads = 0;
    std::atomic<int> right = 0;
    {
        std::vector<std::jthread> threads;
        threads.reserve(8);
        for (int index = 0; index < 8; ++index) {
            threads.emplace_back([&, index] {
                const auto text = cache.resolve("account", [&] {
                    ++loads;
                    return std::optional<std::string>("secret");
                });
                if (text == "secret") ++right;
                cache.setValue("other " + std::to_string(index), "x");
                cache.setMissing("other");
            });
        }
    }
    EXPECT_EQ(loads, 1);
    EXPECT_EQ(right, 8);
}

}  // namespace
}  // namespace ovrin
