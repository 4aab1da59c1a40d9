// The translation card without a screen: writes down what it is told, and is looked at and closed as the test says.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "fakes/journal.h"
#include "windows/mini_popover_window.h"

namespace ovrin {

class FakeMiniPopoverWindow final : public MiniPopoverWindow {
public:
    FakeMiniPopoverWindow(Journal& journal, MiniPopoverViewModel& viewModel, std::function<void()> requestClose)
        : viewModel(viewModel), requestClose(std::move(requestClose)), journal_(journal) {}
    FakeMiniPopoverWindow(const FakeMiniPopoverWindow&) = delete;
    FakeMiniPopoverWindow& operator=(const FakeMiniPopoverWindow&) = delete;
    ~FakeMiniPopoverWindow() override { journal_.add("card gone: " + viewModel.sourceText().value()); }

    MiniPopoverViewModel& viewModel;
    const std::function<void()> requestClose;
    WindowPoint origin;

    void present(WindowPoint at) override {
        origin = at;
        journal_.add("card: " + viewModel.sourceText().value());
        viewModel.start();
    }

private:
    Journal& journal_;
};

}  // namespace ovrin
