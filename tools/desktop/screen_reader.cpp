#include "desktop/screen_reader.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/error.h"
#include "base/text.h"
#include "desktop/wait.h"

namespace ovrin {
namespace {

constexpr const char* accessible = "org.a11y.atspi.Accessible";
constexpr const char* component = "org.a11y.atspi.Component";
constexpr const char* textInterface = "org.a11y.atspi.Text";
constexpr std::uint32_t screenCoordinates = 0;
constexpr int deepest = 40;

std::string busAddress(const BusView& sessionBus) {
    const Variant reply = sessionBus.call(
        {.destination = "org.a11y.Bus", .path = "/org/a11y/bus", .interface = "org.a11y.Bus", .name = "GetAddress"});
    const char* address = nullptr;
    g_variant_get(reply.get(), "(&s)", &address);
    return address;
}

}  // namespace

ScreenReader::ScreenReader(const BusView& sessionBus) : bus_(std::make_unique<BusView>(busAddress(sessionBus))) {}

BusView::Method ScreenReader::method(const Reference& object, const std::string& interface,
                                     const std::string& name) const {
    return {.destination = object.destination, .path = object.path, .interface = interface, .name = name};
}

std::vector<ScreenReader::Reference> ScreenReader::children(const Reference& parent) const {
    const Variant reply = bus_->call(method(parent, accessible, "GetChildren"));
    GVariantIter* iterator = nullptr;
    g_variant_get(reply.get(), "(a(so))", &iterator);
    std::vector<Reference> found;
    const char* destination = nullptr;
    const char* path = nullptr;
    while (g_variant_iter_next(iterator, "(&s&o)", &destination, &path) != FALSE)
        found.push_back({.destination = destination, .path = path});
    g_variant_iter_free(iterator);
    return found;
}

std::string ScreenReader::textProperty(const Reference& object, const std::string& interface,
                                       const std::string& name) const {
    const Variant value = bus_->property(method(object, interface, name));
    return g_variant_get_string(value.get(), nullptr);
}

std::string ScreenReader::textOf(const Reference& object) const {
    const Variant reply = bus_->call(method(object, accessible, "GetInterfaces"));
    const Variant interfaces(g_variant_get_child_value(reply.get(), 0));
    for (gsize index = 0; index < g_variant_n_children(interfaces.get()); ++index) {
        const char* interface = nullptr;
        g_variant_get_child(interfaces.get(), index, "&s", &interface);
        if (std::string(interface) != textInterface) continue;
        const Variant content = bus_->call(method(object, textInterface, "GetText"), g_variant_new("(ii)", 0, -1));
        const char* text = nullptr;
        g_variant_get(content.get(), "(&s)", &text);
        return text;
    }
    return {};
}

ScreenReader::States ScreenReader::statesOf(const Reference& object) const {
    const Variant reply = bus_->call(method(object, accessible, "GetState"));
    const Variant words(g_variant_get_child_value(reply.get(), 0));
    States states = 0;
    if (g_variant_n_children(words.get()) > 0) g_variant_get_child(words.get(), 0, "u", &states);
    return states;
}

std::optional<ScreenReader::States> ScreenReader::states(const Reference& reference) const {
    try {
        return statesOf(reference);
    } catch (const Error&) {
        return std::nullopt;
    }
}

// None for what is not shown; depth 0 is the program itself.
std::optional<ScreenReader::Element> ScreenReader::read(const Reference& object, int depth) const {
    Element element{.role = {},
                    .name = {},
                    .text = {},
                    .area = {},
                    .states = statesOf(object),
                    .reference = object,
                    .children = {}};
    if (!element.is(State::showing) && depth > 0) return std::nullopt;
    element.name = textProperty(object, accessible, "Name");
    const Variant role = bus_->call(method(object, accessible, "GetRoleName"));
    const char* roleName = nullptr;
    g_variant_get(role.get(), "(&s)", &roleName);
    element.role = roleName;
    if (depth > 0) {
        const Variant extents =
            bus_->call(method(object, component, "GetExtents"), g_variant_new("(u)", screenCoordinates));
        g_variant_get(extents.get(), "((iiii))", &element.area.x, &element.area.y, &element.area.width,
                      &element.area.height);
    }
    element.text = textOf(object);
    if (depth == deepest) return element;
    for (const Reference& child : children(object)) {
        if (auto found = read(child, depth + 1)) element.children.push_back(std::move(*found));
    }
    return element;
}

std::vector<ScreenReader::Element> ScreenReader::windows(const std::string& program) const {
    const Reference desktop{.destination = "org.a11y.atspi.Registry", .path = "/org/a11y/atspi/accessible/root"};
    std::vector<Element> found;
    try {
        for (const Reference& application : children(desktop)) {
            if (!text::equalsIgnoringAsciiCase(textProperty(application, accessible, "Name"), program)) continue;
            if (auto element = read(application, 0)) std::ranges::move(element->children, std::back_inserter(found));
        }
    } catch (const Error&) {
        found.clear();  // windows and programs come and go while they are read; the next look sees what is left
    }
    return found;
}

std::vector<ScreenReader::Element> ScreenReader::elements(const std::string& program) const {
    std::vector<Element> found;
    std::vector<Element> left = windows(program);
    std::ranges::reverse(left);
    while (!left.empty()) {
        Element element = std::move(left.back());
        left.pop_back();
        std::move(element.children.rbegin(), element.children.rend(), std::back_inserter(left));
        element.children.clear();
        found.push_back(std::move(element));
    }
    return found;
}

bool ScreenReader::Element::says(const std::string& words) const {
    return name.find(words) != std::string::npos || this->text.find(words) != std::string::npos;
}

ScreenReader::Element ScreenReader::waitForName(const std::string& program, const std::string& name) const {
    return *waitFor(name + " in a window of " + program, [&]() -> std::optional<Element> {
        const auto all = elements(program);
        const auto found = std::find_if(all.begin(), all.end(), [&](const auto& one) { return one.name == name; });
        return found == all.end() ? std::nullopt : std::optional(*found);
    });
}

ScreenReader::Element ScreenReader::waitForControl(const std::string& program, const std::string& name) const {
    return *waitFor("a control " + name + " in a window of " + program, [&]() -> std::optional<Element> {
        const auto all = elements(program);
        const auto found =
            std::ranges::find_if(all, [&](const auto& one) { return one.name == name && one.is(State::focusable); });
        return found == all.end() ? std::nullopt : std::optional(*found);
    });
}

ScreenReader::Element ScreenReader::waitForWords(const std::string& program, const std::string& words) const {
    return *waitFor("the words " + words + " in a window of " + program, [&]() -> std::optional<Element> {
        for (const Element& element : elements(program)) {
            if (element.says(words)) return element;
        }
        return std::nullopt;
    });
}

bool ScreenReader::shows(const std::string& program, const std::string& words) const {
    const auto all = elements(program);
    return std::ranges::any_of(all, [&](const Element& element) { return element.says(words); });
}

void ScreenReader::press(const Element& element) const {
    bus_->call(method(element.reference, "org.a11y.atspi.Action", "DoAction"), g_variant_new("(i)", 0));
}

}  // namespace ovrin
