// A display server that lacks something: the way to a real one, on which a name is made another that nobody knows,
// whoever says it. An X server then denies the extension of that name; of a Wayland compositor the interface is one
// that no program asks for. Descriptors that come along are passed on.
#pragma once

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace ovrin {

class NameHidingSocket {
public:
    // path: of the socket that is made, and removed in the end; server: of the real one. Throws Error when it cannot be
    // made.
    NameHidingSocket(std::filesystem::path path, std::filesystem::path server, std::string name);
    NameHidingSocket(const NameHidingSocket&) = delete;
    NameHidingSocket& operator=(const NameHidingSocket&) = delete;
    ~NameHidingSocket();

private:
    void accept();
    void pass(int from, int to) const;

    std::filesystem::path path_;
    std::filesystem::path server_;
    std::string name_;
    int listening_;
    // Of the accepting thread, until it has ended.
    std::vector<int> ends_;
    std::vector<std::thread> passing_;  // one for each direction of a connection
    std::thread accepting_;
};

}  // namespace ovrin
