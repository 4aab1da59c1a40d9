// The system as os-release and dpkg describe it.
#pragma once

#include "platform/package_system.h"

namespace ovrin {

// Where there is no dpkg, the architecture is unknown and the program did not come with a package.
class DpkgSystem final : public PackageSystem {
public:
    Description describe() const override;
};

}  // namespace ovrin
