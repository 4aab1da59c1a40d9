// The result panel's window without a screen: writes down what it is told, and closes itself as a user would.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "fakes/journal.h"
#include "windows/result_panel_window.h"

namespace ovrin {

class FakeResultPanelWindow final : public ResultPanelWindow {
public:
    FakeResultPanelWindow(Journal& journal, std::function<void()> requestClose)
        : requestClose(std::move(requestClose)), journal_(journal) {
        journal_.add("window");
    }
    FakeResultPanelWindow(const FakeResultPanelWindow&) = delete;
    FakeResultPanelWindow& operator=(const FakeResultPanelWindow&) = delete;
    ~FakeResultPanelWindow() override {
        journal_.add("window gone, showed " + (content_ ? content_->originalText().value() : "nothing"));
    }

    const std::function<void()> requestClose;

    void setContent(std::shared_ptr<ResultPanelViewModel> viewModel, Entrance entrance) override {
        content_ = std::move(viewModel);
        journal_.add("content " + content_->originalText().value() +
                     (entrance == Entrance::fadesIn ? " fades in" : ""));
    }
    void setLevel(Level level) override { journal_.add(level == Level::floating ? "floating" : "normal"); }
    bool isVisible() const override { return isVisible_; }
    void present() override {
        isVisible_ = true;
        journal_.add("present");
    }
    void hide() { isVisible_ = false; }

private:
    Journal& journal_;
    std::shared_ptr<ResultPanelViewModel> content_;
    bool isVisible_ = false;
};

}  // namespace ovrin
