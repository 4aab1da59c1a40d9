#include "wake_ups.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <thread>

namespace ovrin {
namespace {

std::map<std::string, long> contextSwitches(pid_t process) {
    std::map<std::string, long> counts;
    const std::string tasks = "/proc/" + std::to_string(process) + "/task";
    for (const auto& task : std::filesystem::directory_iterator(tasks)) {
        std::ifstream status(task.path() / "status");
        for (std::string word; status >> word;) {
            if (word == "voluntary_ctxt_switches:") status >> counts[task.path().filename()];
        }
    }
    return counts;
}

}  // namespace

long countWakeUps(pid_t process, std::chrono::seconds time) {
    const auto before = contextSwitches(process);
    std::this_thread::sleep_for(time);
    long count = 0;
    for (const auto& [thread, switches] : contextSwitches(process)) {
        const auto known = before.find(thread);
        count += switches - (known == before.end() ? 0 : known->second);
    }
    return count;
}

}  // namespace ovrin
