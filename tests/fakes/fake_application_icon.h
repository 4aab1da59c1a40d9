// The program's icon, written down.
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "fakes/journal.h"
#include "platform/application_icon.h"

namespace ovrin {

class FakeApplicationIcon final : public ApplicationIcon {
public:
    explicit FakeApplicationIcon(Journal& journal) : journal_(journal) {}
    std::set<std::string, std::less<>> images{"EntranceIconLight", "EntranceIconDark"};
    bool hasImage(std::string_view asset) const override { return images.contains(asset); }
    void setImage(std::string_view asset) override { journal_.add(std::string(asset)); }

private:
    Journal& journal_;
};

}  // namespace ovrin
