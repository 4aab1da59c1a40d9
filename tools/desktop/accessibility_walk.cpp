#include "desktop/accessibility_walk.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "base/error.h"
#include "base/text.h"
#include "desktop/wait.h"

namespace ovrin {
namespace {

using Element = ScreenReader::Element;
using State = ScreenReader::State;
using Stops = std::vector<const Element*>;

constexpr std::chrono::seconds patience{2};  // with what a key brings about

// What toolkits call widgets of which they know nothing.
const std::set<std::string, std::less<>> genericRoles{"panel", "filler", "unknown", "invalid", "redundant object"};
const std::set<std::string, std::less<>> switchRoles{"check box", "toggle button", "switch"};
const std::set<std::string, std::less<>> segmentRoles{"radio button", "page tab"};  // of which one is chosen
// Of these, Tab reaches one of a group and arrows the others.
const std::set<std::string, std::less<>> groupRoles{"radio button", "page tab", "list item"};

std::string described(const Element& element) {
    return element.role + " \"" + element.name + "\" at " + std::to_string(element.area.x) + "," +
           std::to_string(element.area.y);
}

bool takesKeyboard(const Element& element) {
    return element.is(State::focusable) && element.is(State::enabled);
}

PixelArea united(const PixelArea& first, const PixelArea& second) {
    const int left = std::min(first.x, second.x);
    const int top = std::min(first.y, second.y);
    return {.x = left,
            .y = top,
            .width = std::max(first.x + first.width, second.x + second.width) - left,
            .height = std::max(first.y + first.height, second.y + second.height) - top};
}

// Elements that are read together, with the area that they take up.
struct Group {
    Stops stops;
    PixelArea area;
};

bool areInOneRow(const PixelArea& first, const PixelArea& second) {
    const int shared = std::min(first.y + first.height, second.y + second.height) - std::max(first.y, second.y);
    return 2 * shared >= std::min(first.height, second.height);
}

// From the top down and in a row from the left.
void sortForReading(std::vector<Group>& groups) {
    std::ranges::stable_sort(groups, {}, [](const Group& group) { return group.area.y; });
    for (auto row = groups.begin(); row != groups.end();) {
        PixelArea area = row->area;
        auto end = row + 1;
        for (; end != groups.end() && areInOneRow(area, end->area); ++end) area = united(area, end->area);
        std::stable_sort(row, end, [](const Group& one, const Group& other) { return one.area.x < other.area.x; });
        row = end;
    }
}

// All that takes the keyboard, in the order in which it is read.
Group readingOrder(const Element& element) {
    std::vector<Group> groups;
    for (const Element& child : element.children) {
        Group group = readingOrder(child);
        if (!group.stops.empty()) groups.push_back(std::move(group));
    }
    sortForReading(groups);
    if (takesKeyboard(element)) groups.insert(groups.begin(), {.stops = {&element}, .area = element.area});
    Group all;
    for (const Group& group : groups) {
        all.area = all.stops.empty() ? group.area : united(all.area, group.area);
        all.stops.insert(all.stops.end(), group.stops.begin(), group.stops.end());
    }
    return all;
}

class Walk {
public:
    Walk(const ScreenReader& reader, const TestUser& user, const Element& window)
        : reader_(reader), user_(user), window_(window), stops_(readingOrder(window).stops) {
        noteGroups(window);
    }

    std::vector<std::string> faults() {
        judgeElements();
        judgeOrder(visitByTab());
        return std::move(faults_);
    }

private:
    // Siblings of one role that Tab takes for one.
    void noteGroups(const Element& parent) {
        std::map<std::string, int> chosenSegments;
        for (const Element& child : parent.children) {
            if (groupRoles.contains(child.role)) parentOfItem_[&child] = &parent;
            if (segmentRoles.contains(child.role))
                chosenSegments[child.role] += child.is(State::checked) || child.is(State::selected) ? 1 : 0;
            noteGroups(child);
        }
        for (const auto& [role, count] : chosenSegments) {
            if (count != 1)
                faults_.push_back("of every " + role + " in " + described(parent) + ", " + std::to_string(count) +
                                  " say that they are chosen");
        }
    }

    void judgeElements() {
        if (genericRoles.contains(window_.role)) faults_.push_back(described(window_) + " does not say that it is one");
        std::map<std::string, const Element*> named;
        for (const Element* const stop : stops_) {
            if (text::trimmed(stop->name).empty())
                faults_.push_back(described(*stop) + " has no name");
            else if (!named.emplace(stop->name, stop).second)
                faults_.push_back(described(*stop) + " has the name of " + described(*named[stop->name]));
            if (genericRoles.contains(stop->role)) faults_.push_back(described(*stop) + " does not say what it is");
        }
    }

    bool isNow(const Element& element, State state) const {
        return ScreenReader::has(reader_.states(element.reference).value_or(0), state);
    }

    const Element* focused() const {
        const auto found =
            std::ranges::find_if(stops_, [this](const Element* stop) { return isNow(*stop, State::focused); });
        return found == stops_.end() ? nullptr : *found;
    }

    // The one that has the keyboard.
    void judgeSwitch(const Element& stop) {
        if (!switchRoles.contains(stop.role)) return;
        for (const bool wasChecked : {stop.is(State::checked), !stop.is(State::checked)}) {
            user_.pressKeys("space");
            try {
                waitFor(
                    "a switch", [&] { return isNow(stop, State::checked) != wasChecked; }, patience);
            } catch (const Error&) {
                faults_.push_back(described(stop) + " does not say that it was switched");
                return;
            }
        }
    }

    // None when Tab leads to nothing that is shown, or nowhere.
    const Element* pressTab(const Element* from) const {
        user_.pressKeys("Tab");
        const Element* next = nullptr;
        try {
            waitFor(
                "Tab", [&] { return (next = focused()) != nullptr && next != from; }, patience);
        } catch (const Error&) {
            return nullptr;
        }
        return next;
    }

    // Once around.
    Stops visitByTab() {
        Stops visited;
        const Element* stop = focused();
        if (stop != nullptr && stops_.size() == 1) return {stop};
        while (visited.size() <= stops_.size()) {
            const Element* const next = pressTab(stop);
            if (next == nullptr)
                faults_.push_back("Tab leads nowhere from " + (stop == nullptr ? "the start" : described(*stop)));
            if (next == nullptr || (!visited.empty() && next == visited.front())) return visited;
            visited.push_back(next);
            judgeSwitch(*next);
            stop = next;
        }
        faults_.emplace_back("Tab does not come around");
        return visited;
    }

    void judgeOrder(const Stops& visited) {
        Stops expected = stops_;
        std::erase_if(expected, [&](const Element* stop) { return std::ranges::find(visited, stop) == visited.end(); });
        for (const Element* const stop : stops_) {
            if (std::ranges::find(expected, stop) == expected.end() && !isReachedByArrows(*stop, visited))
                faults_.push_back("Tab does not reach " + described(*stop));
        }
        if (visited.empty()) return;
        std::rotate(expected.begin(), std::ranges::find(expected, visited.front()), expected.end());
        const auto [went, read] = std::ranges::mismatch(visited, expected);
        if (went == visited.end() || read == expected.end()) return;
        faults_.push_back("Tab goes from " + described(**std::prev(went)) + " to " + described(**went) +
                          " where one reads on with " + described(**read));
    }

    bool isReachedByArrows(const Element& stop, const Stops& visited) const {
        const auto parent = parentOfItem_.find(&stop);
        return parent != parentOfItem_.end() && std::ranges::any_of(visited, [&](const Element* other) {
                   const auto found = parentOfItem_.find(other);
                   return found != parentOfItem_.end() && found->second == parent->second && other->role == stop.role;
               });
    }

    const ScreenReader& reader_;
    const TestUser& user_;
    const Element& window_;
    const Stops stops_;
    std::map<const Element*, const Element*> parentOfItem_;
    std::vector<std::string> faults_;
};

}  // namespace

std::vector<std::string> AccessibilityWalk::faults(const ScreenReader& reader, const TestUser& user,
                                                   const std::string& program, const std::string& name) {
    const auto window = waitFor("the window " + name + " on the accessibility bus", [&]() -> std::optional<Element> {
        for (Element& one : reader.windows(program)) {
            if (one.name == name) return std::move(one);
        }
        return std::nullopt;
    });
    return Walk(reader, user, *window).faults();
}

}  // namespace ovrin
