// A login item that fails when it is told to.
#pragma once

#include <string>

#include "base/error.h"
#include "fakes/journal.h"
#include "platform/login_item.h"

namespace ovrin {

class FakeLoginItem final : public LoginItem {
public:
    explicit FakeLoginItem(Journal& journal) : journal_(journal) {}

    bool isOn = false;
    std::string failure;  // empty: none

    bool isEnabled() const override { return isOn; }
    void registerItem() override { change(true, "register"); }
    void unregisterItem() override { change(false, "unregister"); }

private:
    void change(bool on, const std::string& event) {
        if (!failure.empty()) throw Error(failure);
        journal_.add(event);
        isOn = on;
    }

    Journal& journal_;
};

}  // namespace ovrin
