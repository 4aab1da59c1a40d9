// What a screen reader finds in the windows of a program: the names, texts and places of their elements, through the
// accessibility bus of a desktop that has one. One thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "desktop/bus_view.h"
#include "desktop/pixel_area.h"
#include "desktop/private_desktop.h"

namespace ovrin {

class ScreenReader {
public:
    struct Element {
        std::string role;  // such as "push button", "label", "text"
        std::string name;
        std::string text;  // of those that hold text
        PixelArea area;    // on the screen
        bool isEnabled = false;
    };

    explicit ScreenReader(const PrivateDesktop& desktop);

    // Everything that the program of that name (in whatever case) shows, windows before what is in them. Empty when it
    // shows nothing.
    std::vector<Element> elements(const std::string& program) const;

    // The first element that is shown under the name.
    Element waitForName(const std::string& program, const std::string& name) const;
    // The first element whose name or text contains the words.
    Element waitForWords(const std::string& program, const std::string& words) const;
    bool shows(const std::string& program, const std::string& words) const;

private:
    struct Reference {
        std::string destination;
        std::string path;
    };
    std::vector<Reference> children(const Reference& parent) const;
    std::string textProperty(const Reference& object, const std::string& interface, const std::string& name) const;
    void collect(const Reference& object, std::vector<Element>& found, int depth) const;
    BusView::Method method(const Reference& object, const std::string& interface, const std::string& name) const;

    std::unique_ptr<BusView> bus_;
};

}  // namespace ovrin
