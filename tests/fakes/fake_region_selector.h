// A region selection that the test ends.
#pragma once

#include <utility>

#include "fakes/journal.h"
#include "recognition/region_selector.h"

namespace ovrin {

class FakeRegionSelector final : public RegionSelector {
public:
    explicit FakeRegionSelector(Journal& journal) : journal_(journal) {}

    Completion completion;

    void begin(Completion newCompletion) override {
        journal_.add("selection begins");
        completion = std::move(newCompletion);
    }

private:
    Journal& journal_;
};

}  // namespace ovrin
