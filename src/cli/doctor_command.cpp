#include "cli/doctor_command.h"

#include <algorithm>
#include <cstdlib>

#include <nlohmann/json.hpp>

namespace ovrin::cli {
namespace {

std::string lines(const std::vector<Capability>& capabilities) {
    std::size_t widest = 0;
    for (const Capability& capability : capabilities) widest = std::max(widest, capability.name.size());
    std::string text;
    for (const Capability& capability : capabilities) {
        text += capability.name + std::string(widest - capability.name.size() + 2, ' ') +
                (capability.isAvailable ? "yes  " : "no   ") + capability.detail + "\n";
    }
    return text;
}

std::string json(const std::vector<Capability>& capabilities) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Capability& capability : capabilities) {
        list.push_back({{"name", capability.name},
                        {"available", capability.isAvailable},
                        {capability.isAvailable ? "mechanism" : "reason", capability.detail}});
    }
    return list.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace

int showCapabilities(const Doctor& command, const std::vector<Capability>& capabilities, Terminal& terminal) {
    terminal.writeForeign(command.form == OutputForm::json ? json(capabilities) : lines(capabilities));
    const bool captures = std::ranges::any_of(capabilities, [](const Capability& capability) {
        return capability.name == "capture" && capability.isAvailable;
    });
    return captures ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace ovrin::cli
