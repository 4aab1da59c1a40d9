#include "desktop/screen_reader.h"

#include <algorithm>
#include <cstdint>
#include <optional>
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
// Numbers of states in the bit set that an element answers with.
constexpr std::uint32_t enabledState = 8;
constexpr std::uint32_t showingState = 25;

std::string busAddress(const BusView& sessionBus) {
    const Variant reply = sessionBus.call(
        {.destination = "org.a11y.Bus", .path = "/org/a11y/bus", .interface = "org.a11y.Bus", .name = "GetAddress"});
    const char* address = nullptr;
    g_variant_get(reply.get(), "(&s)", &address);
    return address;
}

}  // namespace

ScreenReader::ScreenReader(const PrivateDesktop& desktop)
    : bus_(std::make_unique<BusView>(busAddress(desktop.bus()))) {}

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

void ScreenReader::collect(const Reference& object, std::vector<Element>& found, int depth) const {
    const Variant states = bus_->call(method(object, accessible, "GetState"));
    const Variant bits(g_variant_get_child_value(states.get(), 0));
    std::uint32_t low = 0;
    if (g_variant_n_children(bits.get()) > 0) g_variant_get_child(bits.get(), 0, "u", &low);
    const auto has = [low](std::uint32_t state) { return (low >> state & 1U) != 0; };
    if (!has(showingState) && depth > 0) return;

    Element element{.role = {}, .name = textProperty(object, accessible, "Name"), .text = {}, .area = {}};
    const Variant role = bus_->call(method(object, accessible, "GetRoleName"));
    const char* roleName = nullptr;
    g_variant_get(role.get(), "(&s)", &roleName);
    element.role = roleName;
    element.isEnabled = has(enabledState);
    if (depth > 0) {
        const Variant extents =
            bus_->call(method(object, component, "GetExtents"), g_variant_new("(u)", screenCoordinates));
        g_variant_get(extents.get(), "((iiii))", &element.area.x, &element.area.y, &element.area.width,
                      &element.area.height);
    }
    const Variant interfaces = bus_->call(method(object, accessible, "GetInterfaces"));
    const Variant list(g_variant_get_child_value(interfaces.get(), 0));
    for (gsize index = 0; index < g_variant_n_children(list.get()); ++index) {
        const char* interface = nullptr;
        g_variant_get_child(list.get(), index, "&s", &interface);
        if (std::string(interface) != textInterface) continue;
        const Variant content = bus_->call(method(object, textInterface, "GetText"), g_variant_new("(ii)", 0, -1));
        const char* text = nullptr;
        g_variant_get(content.get(), "(&s)", &text);
        element.text = text;
    }
    found.push_back(std::move(element));
    if (depth == deepest) return;
    for (const Reference& child : children(object)) collect(child, found, depth + 1);
}

std::vector<ScreenReader::Element> ScreenReader::elements(const std::string& program) const {
    const Reference desktop{.destination = "org.a11y.atspi.Registry", .path = "/org/a11y/atspi/accessible/root"};
    std::vector<Element> found;
    for (const Reference& application : children(desktop)) {
        try {
            if (text::equalsIgnoringAsciiCase(textProperty(application, accessible, "Name"), program))
                collect(application, found, 0);
        } catch (const Error&) {
            found.clear();  // windows and programs end while they are read; the next look sees what is left
        }
    }
    return found;
}

ScreenReader::Element ScreenReader::waitForName(const std::string& program, const std::string& name) const {
    return *waitFor(name + " in a window of " + program, [&]() -> std::optional<Element> {
        const auto all = elements(program);
        const auto found = std::find_if(all.begin(), all.end(), [&](const auto& one) { return one.name == name; });
        return found == all.end() ? std::nullopt : std::optional(*found);
    });
}

ScreenReader::Element ScreenReader::waitForWords(const std::string& program, const std::string& words) const {
    return *waitFor("the words " + words + " in a window of " + program, [&]() -> std::optional<Element> {
        for (const Element& element : elements(program)) {
            if (element.name.find(words) != std::string::npos || element.text.find(words) != std::string::npos)
                return element;
        }
        return std::nullopt;
    });
}

bool ScreenReader::shows(const std::string& program, const std::string& words) const {
    const auto all = elements(program);
    return std::any_of(all.begin(), all.end(), [&](const Element& element) {
        return element.name.find(words) != std::string::npos || element.text.find(words) != std::string::npos;
    });
}

}  // namespace ovrin
