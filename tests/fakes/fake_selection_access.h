// A selection in another program, as the test has it.
#pragma once

#include <string>
#include <variant>

#include "fakes/deferred.h"
#include "fakes/journal.h"
#include "language/selection_access.h"

namespace ovrin {

class FakeSelectionAccess final : public SelectionAccess {
public:
    explicit FakeSelectionAccess(Journal& journal) : journal_(journal) {}

    Deferred<std::string> selection;
    Deferred<std::monostate> replacement;

    Task<std::string> selectedText() override {
        journal_.add("selection read");
        return selection.result();
    }
    Task<void> replaceSelection(std::string text) override {
        journal_.add("selection replaced: " + text);
        co_await replacement.result();
    }

private:
    Journal& journal_;
};

}  // namespace ovrin
