// ovrin config as several processes at once use it.
#include <csignal>
#include <deque>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fakes/silent_bus.h"
#include "program/running_program.h"
#include "shortcuts/action.h"

namespace ovrin {
namespace {

TEST(ConfigProgram, ChangesOfProcessesAtTheSameTimeAreAllKept) {
    std::vector<std::string> keys;
    for (const ActionDescription& action : allActions())
        if (!action.shortcutName.empty()) keys.push_back("KeyboardShortcuts_" + std::string(action.shortcutName));
    const TestHome home;
    std::deque<RunningProgram> programs;
    for (const std::string& key : keys)
        programs.emplace_back(home, RunningProgram::Setup{.arguments = {"config", "set", key, "value of " + key}});
    for (RunningProgram& program : programs) EXPECT_EQ(program.finish().status, 0);
    for (const std::string& key : keys)
        EXPECT_EQ(runProgram(home, {.arguments = {"config", "get", key}}).output, "value of " + key + "\n");
}

TEST(ConfigProgram, InterruptedWhileItWaitsForTheKeyItStoresNothing) {
    const TestHome home;
    RunningProgram program(home, {.arguments = {"config", "set-key"}, .input = std::nullopt});
    program.signal(SIGTERM);
    EXPECT_NE(program.finish().status, 0);
    EXPECT_FALSE(std::filesystem::exists(home.keychainFile()));
}

TEST(ConfigProgram, ABusThatIsSilentHoldsNoChange) {
    const TestHome home;
    const SilentBus bus;
    const std::string address = "DBUS_SESSION_BUS_ADDRESS=" + bus.address();
    const auto changed =
        runProgram(home, {.arguments = {"config", "set", "ovrin.model", "m"}, .environment = {address}});
    EXPECT_EQ(changed.status, 0);
    EXPECT_EQ(changed.error, "");
    EXPECT_EQ(runProgram(home, {.arguments = {"config", "get", "ovrin.model"}}).output, "m\n");
}

TEST(ConfigProgram, InterruptedWhileTheKeychainIsSilentItStoresNothing) {
    const TestHome home;
    SilentBus bus;
    RunningProgram program(home, {.arguments = {"config", "set-key"},
                                  .environment = {"DBUS_SESSION_BUS_ADDRESS=" + bus.address()},
                                  .input = "practice\n"});
    bus.waitForClient();
    program.signal(SIGINT);
    const auto outcome = program.finish();
    EXPECT_EQ(outcome.status, 128 + SIGINT);
    EXPECT_EQ(outcome.error, "");
    EXPECT_FALSE(std::filesystem::exists(home.keychainFile()));
}

}  // namespace
}  // namespace ovrin
