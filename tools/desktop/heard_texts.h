// The texts of a program as a screen reader keeps them that has read them once and hears what is inserted and removed
// from then on. One thread.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "desktop/screen_reader.h"

namespace ovrin {

class HeardTexts {
public:
    struct Text {
        std::string words;
        int insertions = 0;
    };

    // The reader outlives it.
    explicit HeardTexts(const ScreenReader& reader);
    ~HeardTexts();
    HeardTexts(const HeardTexts&) = delete;
    HeardTexts& operator=(const HeardTexts&) = delete;

    // Listens to the element, which was just read and does not change before the end of the call.
    void begin(const ScreenReader::Element& element);
    // What it is by all that has been heard.
    Text text(const ScreenReader::Reference& element);

private:
    void askForChanges(const ScreenReader::Reference& element) const;
    void listen() const;
    void hear(const std::string& path, GVariant* change);

    const ScreenReader& reader_;
    const BusView& bus_;
    std::unique_ptr<GMainContext, decltype(&g_main_context_unref)> context_{g_main_context_new(),
                                                                            &g_main_context_unref};
    guint subscription_ = 0;
    std::map<std::string, Text> texts_;  // by the path of the element
};

}  // namespace ovrin
