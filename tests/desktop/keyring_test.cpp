// The key in a real keyring, which asks its owner when it is locked.
#include "desktop/keyring.h"

#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/private_desktop.h"
#include "desktop/test_user.h"

namespace ovrin {
namespace {

using ::testing::Optional;

struct KeyringTest : testing::Test {
    std::unique_ptr<ChildProcess> setKey(const std::string& key) const {
        return desktop.start({.arguments = {OVRIN_BINARY_DIR "/ovrin", "config", "set-key"}, .inputText = key});
    }
    void waitForPrompt() const { user.waitUntilActive(user.waitForWindow({.program = Keyring::promptProgram}).id); }

    const PrivateDesktop desktop{{.compositor = PrivateDesktop::Compositor::none, .tray = PrivateDesktop::Tray::none}};
    const TestUser user{desktop.display()};
    const Keyring keyring{desktop};
    const std::string account = "deepseek-api-key";
};

TEST_F(KeyringTest, ALockedOneAsksAndWhoRefusesKeepsTheOldKey) {
    EXPECT_EQ(keyring.secret(account), std::nullopt);
    EXPECT_EQ(setKey("sk-first")->waitForEnd(), 0);
    EXPECT_THAT(keyring.secret(account), Optional(std::string("sk-first")));

    keyring.lock();
    const auto refused = setKey("sk-second");
    waitForPrompt();
    user.pressKeys("Escape");
    EXPECT_EQ(refused->waitForEnd(), 1);

    const auto granted = setKey("sk-third");
    waitForPrompt();
    user.type(Keyring::password + std::string("\n"));
    EXPECT_EQ(granted->waitForEnd(), 0);
    EXPECT_THAT(keyring.secret(account), Optional(std::string("sk-third")));
}

}  // namespace
}  // namespace ovrin
