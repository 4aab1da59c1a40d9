// The login item of the Linux desktop: an entry in the user's autostart folder (Desktop Application Autostart
// Specification), which also decides about one that a distributor installed for all users.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/environment.h"
#include "platform/login_item.h"

namespace ovrin {

class AutostartLoginItem final : public LoginItem {
public:
    // executable: the absolute path of the running program. The environment names the folders of the entries, and
    // those of the programs that are started without their path.
    AutostartLoginItem(const Environment& environment, std::filesystem::path executable);

    // Whether the entry that counts is switched on and its program is there. On which desktops it starts the program
    // (OnlyShowIn, NotShowIn) is the user's affair.
    bool isEnabled() const override;

    // Switches the user's entry on; what else it holds stays.
    void registerItem() override;
    // Deletes the user's entry; where all users have one, hides that by an entry of the user.
    void unregisterItem() override;

private:
    using Paths = std::vector<std::filesystem::path>;

    // The first entry of all users that there is; an empty path when there is none.
    std::filesystem::path sharedEntry() const;
    bool isEnabled(const std::filesystem::path& entry) const;
    // Where the search path finds a program; an empty path when it does not.
    std::filesystem::path found(const std::filesystem::path& program) const;
    // The program's name where that is enough to find it, else its path.
    std::filesystem::path program() const;

    std::filesystem::path ownEntry_;
    Paths sharedEntries_;  // the one that counts first
    Paths searchPath_;
    std::filesystem::path executable_;
};

}  // namespace ovrin
