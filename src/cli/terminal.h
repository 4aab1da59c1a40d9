// The three standard channels of the program, as file descriptors, so that tests can give their own.
#pragma once

#include <cstddef>
#include <exception>
#include <stop_token>
#include <string>
#include <string_view>

namespace ovrin::cli {

// Whoever read standard output has gone: there is no point in going on, and nothing to say.
class OutputClosed : public std::exception {
public:
    const char* what() const noexcept override { return "standard output was closed"; }
};

class Terminal {
public:
    // The descriptors stay the caller's. SIGPIPE must be ignored in the process.
    Terminal(int input, int output, int error) : input_(input), output_(output), error_(error) {}

    // Writes the bytes as they are, at once. Throws OutputClosed when the reader has gone, Error when the device fails.
    void write(std::string_view text) const;

    // The same for text that a service wrote: a terminal shows its control characters as symbols instead of obeying
    // them, but for line feeds and tabs.
    void writeForeign(std::string_view text) const;

    // One line on standard error, with its control characters as writeForeign() has them, because services have a say
    // in errors; failures are ignored, there is nowhere left to tell them.
    void writeError(std::string_view line) const;

    // Everything up to the end of standard input. Throws Error when it cannot be read or exceeds maximumBytes, and
    // CancellationError as soon as a stop is requested.
    std::string readAll(std::size_t maximumBytes, std::stop_token stop = {}) const;

    // The first line of standard input. On a terminal it asks for it on standard error and does not show what is typed.
    // Throws as readAll() does.
    std::string readSecretLine(std::string_view prompt, std::stop_token stop = {}) const;

    int output() const { return output_; }
    bool outputIsTerminal() const;

private:
    int input_;
    int output_;
    int error_;
};

}  // namespace ovrin::cli
