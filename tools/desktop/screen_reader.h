// What a screen reader finds in the windows of a program: the names, texts, states and places of their elements,
// through the accessibility bus of a desktop that has one. One thread.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/bus_view.h"
#include "desktop/pixel_area.h"

namespace ovrin {

class ScreenReader {
public:
    // Where an element is on the bus.
    struct Reference {
        std::string destination;
        std::string path;
    };
    enum class State : std::uint8_t {  // their numbers in the bit set that an element answers with
        active = 1,                    // a window with the keyboard
        checked = 4,
        enabled = 8,
        focusable = 11,
        focused = 12,
        selected = 23,
        showing = 25
    };
    using States = std::uint32_t;  // the first of its two words, which holds all of these
    static bool has(States states, State state) { return (states >> static_cast<unsigned>(state) & 1U) != 0; }

    struct Element {
        std::string role;  // such as "push button", "label", "text"
        std::string name;
        std::string text;  // of those that hold text
        PixelArea area;    // on the screen
        States states = 0;
        Reference reference;
        std::vector<Element> children;

        bool is(State state) const { return has(states, state); }
        // Whether its name or its text contains the words.
        bool says(const std::string& words) const;
    };

    // sessionBus: of a desktop with an accessibility bus.
    explicit ScreenReader(const BusView& sessionBus);

    // What the program of that name (in whatever case) shows: its windows with everything in them. Empty when it shows
    // nothing.
    std::vector<Element> windows(const std::string& program) const;
    // The same without the order of a tree: windows before what is in them, and no element has children.
    std::vector<Element> elements(const std::string& program) const;
    // The states of an element now; none when it has gone.
    std::optional<States> states(const Reference& reference) const;

    // The first element that is shown under the name, and the first that takes the keyboard under it.
    Element waitForName(const std::string& program, const std::string& name) const;
    Element waitForControl(const std::string& program, const std::string& name) const;
    // The first element whose name or text contains the words.
    Element waitForWords(const std::string& program, const std::string& words) const;
    bool shows(const std::string& program, const std::string& words) const;

    // Does what a click on the element would do.
    void press(const Element& element) const;

    const BusView& bus() const { return *bus_; }

private:
    std::vector<Reference> children(const Reference& parent) const;
    std::string textProperty(const Reference& object, const std::string& interface, const std::string& name) const;
    std::string textOf(const Reference& object) const;
    States statesOf(const Reference& object) const;
    std::optional<Element> read(const Reference& object, int depth) const;
    BusView::Method method(const Reference& object, const std::string& interface, const std::string& name) const;

    std::unique_ptr<BusView> bus_;
};

}  // namespace ovrin
