// The small card beside the pointer that shows the translation of a short text.
#pragma once

#include <string>

namespace ovrin {

class TranslationCardPresenter {
public:
    virtual ~TranslationCardPresenter() = default;

    // Shows the card in place of the one on screen; it translates the text by itself and never takes the keyboard
    // focus. Main thread.
    virtual void show(std::string sourceText) = 0;
};

}  // namespace ovrin
