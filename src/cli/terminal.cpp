#include "cli/terminal.h"

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include "base/error.h"
#include "cli/wakeable_wait.h"

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
        } else if (errno == EAGAIN) {
            // Whoever shares the device has made it non-blocking.
            pollfd writable{.fd = descriptor, .events = POLLOUT, .revents = 0};
            ::poll(&writable, 1, -1);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

void appendControlPicture(std::string& text, unsigned char control) {
    constexpr unsigned char deletion = 0x7F;
    constexpr unsigned char firstPicture = 0x80;  // U+2400 is E2 90 80
    text += "\xE2\x90";
    text += static_cast<char>(firstPicture + (control == deletion ? 0x21 : control));
}

// U+0000 to U+001F and U+007F become Unicode's pictures of them. U+0080 to U+009F have none, and become U+FFFD.
std::string withVisibleControls(std::string_view text) {
    std::string visible;
    visible.reserve(text.size());
    for (std::size_t index = 0; index < text.size(); ++index) {
        const auto byte = static_cast<unsigned char>(text[index]);
        const auto next = static_cast<unsigned char>(index + 1 < text.size() ? text[index + 1] : '\0');
        if ((byte < 0x20 && byte != '\n' && byte != '\t') || byte == 0x7F) {
            appendControlPicture(visible, byte);
        } else if (byte == 0xC2 && next >= 0x80 && next <= 0x9F) {
            visible += "\uFFFD";
            ++index;
        } else {
            visible += text[index];
        }
    }
    return visible;
}

constexpr std::size_t longestSecret = 65536;  // bytes

// Reads whose wait a stop request ends.
class Input {
public:
    Input(int descriptor, std::stop_token stop) : descriptor_(descriptor), stop_(stop), wait_(std::move(stop)) {}

    // How many bytes came; 0 at the end.
    std::size_t read(char* buffer, std::size_t size) {
        while (true) {
            if (stop_.stop_possible()) wait_.untilReadable(descriptor_);
            if (stop_.stop_requested()) throw CancellationError();
            const ssize_t count = ::read(descriptor_, buffer, size);
            if (count >= 0) return static_cast<std::size_t>(count);
            if (errno != EINTR) throw Error("standard input: " + reason(errno));
        }
    }

private:
    int descriptor_;
    std::stop_token stop_;
    WakeableWait wait_;
};

// Asks for a secret on a terminal and keeps that from showing what is typed; does nothing with other devices.
class SecretPrompt {
public:
    SecretPrompt(int input, int error, std::string_view prompt)
        : input_(input), error_(error), isTerminal_(::tcgetattr(input, &before_) == 0) {
        if (!isTerminal_) return;
        writeFully(error_, prompt);
        termios silent = before_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        ::tcsetattr(input_, TCSAFLUSH, &silent);
    }
    SecretPrompt(const SecretPrompt&) = delete;
    SecretPrompt& operator=(const SecretPrompt&) = delete;
    ~SecretPrompt() {
        if (!isTerminal_) return;
        ::tcsetattr(input_, TCSAFLUSH, &before_);
        writeFully(error_, "\n");  // the typed one wasn't shown either
    }

private:
    int input_;
    int error_;
    termios before_{};
    bool isTerminal_;
};

}  // namespace

void Terminal::write(std::string_view text) const {
    const int failure = writeFully(output_, text);
    if (failure == EPIPE) throw OutputClosed();
    if (failure != 0) throw Error("standard output: " + reason(failure));
}

void Terminal::writeForeign(std::string_view text) const {
    if (!outputIsTerminal()) return write(text);
    write(withVisibleControls(text));
}

void Terminal::writeError(std::string_view line) const {
    std::string whole = ::isatty(error_) == 1 ? withVisibleControls(line) : std::string(line);
    whole += '\n';
    writeFully(error_, whole);
}

std::string Terminal::readAll(std::size_t maximumBytes, std::stop_token stop) const {
    Input input(input_, std::move(stop));
    std::string all;
    std::array<char, 65536> buffer{};
    while (const std::size_t count = input.read(buffer.data(), buffer.size())) {
        all.append(buffer.data(), count);
        if (all.size() > maximumBytes) {
            throw Error("standard input: more than " + std::to_string(maximumBytes >> 20U) + " MiB");
        }
    }
    return all;
}

std::string Terminal::readSecretLine(std::string_view prompt, std::stop_token stop) const {
    const SecretPrompt secretPrompt(input_, error_, prompt);
    Input input(input_, std::move(stop));
    std::string line;
    char character = 0;
    while (input.read(&character, 1) != 0 && character != '\n') {
        line += character;
        if (line.size() > longestSecret) throw Error("standard input: the line is too long for a key");
    }
    return line;
}

bool Terminal::outputIsTerminal() const {
    return ::isatty(output_) == 1;
}

}  // namespace ovrin::cli
