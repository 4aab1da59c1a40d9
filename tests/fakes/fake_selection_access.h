// A selection in another program, as the test has it.
#pragma once

#include <string>
#include <utility>

#include "fakes/deferred.h"
#include "fakes/journal.h"
#include "language/selection_access.h"

namespace ovrin {

class FakeSelectionAccess final : public SelectionAccess {
public:
    explicit FakeSelectionAccess(Journal& journal) : journal_(journal) {}

    Deferred<std::string> selection;
    Deferred<Replacement> replacement;

    Task<SelectedText> selectedText(SelectionUse use) override {
        journal_.add(use == SelectionUse::reading ? "selection read" : "selection read to be replaced");
        std::string text = co_await selection.result();
        SelectedText selected{.text = std::move(text), .window = window};
        co_return selected;
    }
    Task<Replacement> replaceSelection(std::string text, SimulateKeyboard::Window place) override {
        journal_.add("selection replaced" + std::string(place == window ? ": " : " elsewhere: ") + text);
        return replacement.result();
    }

private:
    static constexpr SimulateKeyboard::Window window{7};

    Journal& journal_;
};

}  // namespace ovrin
