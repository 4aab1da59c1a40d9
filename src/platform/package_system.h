// Seam: the system that packages are installed into, and whether this program is one of them.
#pragma once

#include <string>

namespace ovrin {

class PackageSystem {
public:
    struct Description {
        std::string distribution;  // ID of os-release; empty when unknown, like the next two
        std::string release;       // VERSION_ID of os-release
        std::string architecture;  // of the packages that the system takes
        bool ownsProgram = false;  // the running program came with a package

        bool operator==(const Description&) const = default;
    };

    virtual ~PackageSystem() = default;

    // Blocks for as long as the package manager needs for an answer. Any thread.
    virtual Description describe() const = 0;
};

}  // namespace ovrin
