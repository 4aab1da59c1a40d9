// A status item that keeps what it was told to show, and whose menu the test opens and closes.
#pragma once

#include <string>
#include <utility>

#include "fakes/journal.h"
#include "platform/status_item.h"

namespace ovrin {

class FakeStatusItem final : public StatusItem {
public:
    explicit FakeStatusItem(Journal& journal) : journal_(journal) {}

    Published<Visibility> isVisible;
    Published<LeftClick> clicking;
    StatusItemEvents events;
    double alpha = -1;
    std::string toolTip;
    Menu menu;

    const Published<Visibility>& visibility() const override { return isVisible; }
    const Published<LeftClick>& leftClick() const override { return clicking; }
    void setEvents(StatusItemEvents newEvents) override { events = std::move(newEvents); }
    void setAlpha(double newAlpha) override { alpha = newAlpha; }
    void setToolTip(std::string text) override { toolTip = std::move(text); }
    void showMenu(Menu newMenu) override {
        journal_.add("menu");
        menu = std::move(newMenu);
    }

private:
    Journal& journal_;
};

}  // namespace ovrin
