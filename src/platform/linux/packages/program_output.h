// What a helper program of the system prints.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace ovrin {

// In the program that is run, the descriptor that was handed to it.
inline constexpr int handedDescriptor = 3;

// Runs a program, found by PATH, in the C locale and without input, and waits for its end. Gives its standard output;
// none when it can't be started or fails. descriptor: handed to it; none is when negative, and none of the others of
// this process ever are. Blocking; any thread.
std::optional<std::string> programOutput(const std::vector<std::string>& arguments, int descriptor = -1);

}  // namespace ovrin
