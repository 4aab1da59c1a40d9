// Seam: the file that an update is downloaded into, and what it says of itself once it is there.
//
// All calls block; they belong on a thread that may wait. Failures are Error with the sentence for the user.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace ovrin {

// From the control file inside a package.
struct PackageControl {
    std::string package;       // its name
    std::string version;       // as Debian writes it
    std::string architecture;  // "amd64"

    bool operator==(const PackageControl&) const = default;
};

// A file that nobody else can read or write. Everything is done through the one descriptor that it was made with, so
// that what is verified is what control() reads. At most one thread at a time.
class UpdatePackage {
public:
    // Removes the file, unless it was kept.
    virtual ~UpdatePackage() = default;

    // Adds the bytes to the end of the file. Throws when the disk does not take them.
    virtual void append(std::string_view bytes) = 0;

    // Whether the whole file carries the signature by the key's owner. Both are Base64 of Ed25519. Throws when the key
    // or the signature is none.
    virtual bool isSigned(const std::string& signature, const std::string& publicKey) const = 0;

    // Throws when the file is no package.
    virtual PackageControl control() const = 0;

    // Where the file is, for a program that it is handed to. Throws when there is another file in its place by now.
    virtual std::filesystem::path path() const = 0;

    // The file outlives the object, for a program that is still to read it. UpdatePackages::removeLeftovers() of a
    // later run removes it.
    virtual void keep() = 0;
};

class UpdatePackages {
public:
    virtual ~UpdatePackages() = default;

    // A new and empty file.
    virtual std::unique_ptr<UpdatePackage> make() = 0;

    // Removes what programs have left that crashed, or kept and then ended. Never throws: what cannot be removed stays.
    virtual void removeLeftovers() = 0;
};

}  // namespace ovrin
