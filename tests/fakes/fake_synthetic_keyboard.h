// A keyboard that writes down the keys it is told to press, and a program in front that answers them.
#pragma once

#include <functional>
#include <utility>

#include "fakes/journal.h"
#include "platform/synthetic_keyboard.h"

namespace ovrin {

class FakeSyntheticKeyboard final : public SimulateKeyboard {
public:
    explicit FakeSyntheticKeyboard(Journal& journal) : journal_(journal) {}

    bool isPermitted = true;
    bool answerToRequest = false;
    std::function<void()> onCopy = [] {};
    std::function<void()> onPaste = [] {};
    Selection way = Selection::copied;
    Window front{7};
    bool isHeld = false;       // by copy() or paste()
    int checksUntilFocus = 0;  // as often it is asked in vain whether another program has the keyboard

    bool isTrusted() override { return isPermitted; }
    Task<bool> requestTrust() override {
        journal_.add("trust requested");
        isPermitted = answerToRequest;
        co_return answerToRequest;
    }
    bool reachesOtherProgram() override { return checksUntilFocus == 0 || --checksUntilFocus == 0; }
    Window frontWindow() override { return front; }
    Selection selection() override { return way; }
    void copy() override {
        journal_.add("copy");
        isHeld = true;
        onCopy();
    }
    void paste() override {
        journal_.add("paste");
        isHeld = true;
        onPaste();
    }
    void letGo() override { isHeld = false; }

private:
    Journal& journal_;
};

}  // namespace ovrin
