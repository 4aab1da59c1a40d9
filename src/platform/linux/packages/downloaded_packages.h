// Downloads of Debian packages as files of a private folder.
#pragma once

#include <filesystem>
#include <memory>

#include "platform/update_package.h"

namespace ovrin {

// Files are locked for as long as the process that made them uses them, so that another one takes only leftovers for
// such. dpkg-deb reads the control file: the reader that installs packages too. It is handed the descriptor.
class DownloadedPackages final : public UpdatePackages {
public:
    // The folder is made when it is needed.
    explicit DownloadedPackages(std::filesystem::path folder);

    std::unique_ptr<UpdatePackage> make() override;
    void removeLeftovers() override;

private:
    std::filesystem::path folder_;
};

}  // namespace ovrin
