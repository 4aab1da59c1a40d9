#include "cli/terminal.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <system_error>

#include <termios.h>
#include <unistd.h>

namespace ovrin::cli {

namespace {

std::string reason(int code) {
    return std::generic_category().message(code);
}

// Writes all of it; the error number of the first failure, else 0.
int writeFully(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

constexpr std::size_t longestSecret = 65536;  // bytes

// Keeps a terminal from showing what is typed; does nothing to other devices.
class HiddenInput {
public:
    explicit HiddenInput(int descriptor) : descriptor_(descriptor), isChanged_(::tcgetattr(descriptor, &before_) == 0) {
        if (!isChanged_) return;
        termios silent = before_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        ::tcsetattr(descriptor_, TCSAFLUSH, &silent);
    }
    HiddenInput(const HiddenInput&) = delete;
    HiddenInput& operator=(const HiddenInput&) = delete;
    ~HiddenInput() {
        if (isChanged_) ::tcsetattr(descriptor_, TCSAFLUSH, &before_);
    }

private:
    int descriptor_;
    termios before_{};
    bool isChanged_;
};

}  // namespace

void Terminal::write(std::string_view text) {
    const int failure = writeFully(output_, text);
    if (failure == EPIPE) throw OutputClosed();
    if (failure != 0) throw Error("standard output: " + reason(failure));
}

void Terminal::writeError(std::string_view line) {
    std::string whole(line);
    whole += '\n';
    writeFully(error_, whole);
}

std::string Terminal::readAll(std::size_t maximumBytes) {
    std::string all;
    std::array<char, 65536> buffer{};
    while (true) {
        const ssize_t count = ::read(input_, buffer.data(), buffer.size());
        if (count == 0) return all;
        if (count < 0) {
            if (errno == EINTR) continue;
            throw Error("standard input: " + reason(errno));
        }
        all.append(buffer.data(), static_cast<std::size_t>(count));
        if (all.size() > maximumBytes) {
            throw Error("standard input: more than " + std::to_string(maximumBytes >> 20U) + " MiB");
        }
    }
}

std::string Terminal::readSecretLine(std::string_view prompt) {
    const bool isTerminal = ::isatty(input_) == 1;
    if (isTerminal) writeFully(error_, prompt);
    std::string line;
    {
        const HiddenInput hidden(input_);
        char character = 0;
        while (true) {
            const ssize_t count = ::read(input_, &character, 1);
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) throw Error("standard input: " + reason(errno));
            if (count == 0 || character == '\n') break;
            line += character;
            if (line.size() > longestSecret) throw Error("standard input: the line is too long for a key");
        }
    }
    if (isTerminal) writeFully(error_, "\n");
    return line;
}

bool Terminal::outputIsTerminal() const {
    return ::isatty(output_) == 1;
}

}  // namespace ovrin::cli
