// Packages are handed to PackageKit's session interface; where there is none, to the OpenURI portal; then to xdg-open;
// and at last the folder is shown.
#pragma once

#include "platform/package_installer.h"

namespace ovrin {

// To be made after the QCoreApplication. No call waits.
class DesktopPackageInstaller final : public PackageInstaller {
public:
    Task<PackageHandOver> install(std::filesystem::path package) override;
    void openPage(const std::string& url) override;
};

}  // namespace ovrin
