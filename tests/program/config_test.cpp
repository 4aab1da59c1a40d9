// ovrin config as several processes at once use it.
#include <csignal>
#include <deque>

#include <gtest/gtest.h>

#include "program/running_program.h"

namespace ovrin {
namespace {

TEST(ConfigProgram, ChangesOfProcessesAtTheSameTimeAreAllKept) {
    constexpr int count = 12;
    const TestHome home;
    const auto key = [](int number) { return "KeyboardShortcuts_action" + std::to_string(number); };
    std::deque<RunningProgram> programs;
    for (int number = 0; number < count; ++number)
        programs.emplace_back(
            home, RunningProgram::Setup{.arguments = {"config", "set", key(number), "value" + std::to_string(number)}});
    for (RunningProgram& program : programs) EXPECT_EQ(program.finish().status, 0);
    for (int number = 0; number < count; ++number)
        EXPECT_EQ(runProgram(home, {.arguments = {"config", "get", key(number)}}).output,
                  "value" + std::to_string(number) + "\n");
}

TEST(ConfigProgram, InterruptedWhileItWaitsForTheKeyItStoresNothing) {
    const TestHome home;
    RunningProgram program(home, {.arguments = {"config", "set-key"}, .input = std::nullopt});
    program.signal(SIGTERM);
    EXPECT_NE(program.finish().status, 0);
    EXPECT_FALSE(std::filesystem::exists(home.keychainFile()));
}

}  // namespace
}  // namespace ovrin
