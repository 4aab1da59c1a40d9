// The three channels of a Terminal, on pipes that the test holds the other ends of.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "base/error.h"
#include "cli/terminal.h"

namespace ovrin::cli {

class Pipe {
public:
    Pipe() {
        if (::pipe2(ends_.data(), O_CLOEXEC) != 0) throw Error("no pipe");
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        closeReading();
        closeWriting();
    }

    int reading() const { return ends_[0]; }
    int writing() const { return ends_[1]; }
    void closeReading() { closeEnd(ends_[0]); }
    void closeWriting() { closeEnd(ends_[1]); }

    // Everything that was written; ends the writing.
    std::string drained() {
        closeWriting();
        std::string all;
        std::array<char, 4096> buffer{};
        for (ssize_t count = 0; (count = ::read(reading(), buffer.data(), buffer.size())) > 0;)
            all.append(buffer.data(), static_cast<std::size_t>(count));
        return all;
    }

private:
    static void closeEnd(int& end) {
        if (end >= 0) ::close(std::exchange(end, -1));
    }

    std::array<int, 2> ends_{-1, -1};
};

struct Channels {
    Pipe input;
    Pipe output;
    Pipe error;
    Terminal terminal{input.reading(), output.writing(), error.writing()};

    // What the terminal reads, to its end. At most what a pipe holds.
    void type(std::string_view text) {
        if (::write(input.writing(), text.data(), text.size()) < 0) throw Error("no input");
        input.closeWriting();
    }
};

}  // namespace ovrin::cli
