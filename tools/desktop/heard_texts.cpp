#include "desktop/heard_texts.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace ovrin {
namespace {

constexpr const char* registry = "org.a11y.atspi.Registry";
constexpr const char* eventName = "object:text-changed";

// Where a character begins, counted in code points on the bus.
std::size_t bytesBefore(const std::string& words, glong characters) {
    characters = std::min(characters, g_utf8_strlen(words.c_str(), -1));
    return static_cast<std::size_t>(g_utf8_offset_to_pointer(words.c_str(), characters) - words.c_str());
}

}  // namespace

HeardTexts::HeardTexts(const ScreenReader& reader) : reader_(reader), bus_(reader.bus()) {
    const auto onSignal = [](GDBusConnection*, const char*, const char* path, const char*, const char*,
                             GVariant* arguments,
                             void* self) { static_cast<HeardTexts*>(self)->hear(path, arguments); };
    g_main_context_push_thread_default(context_.get());
    subscription_ =
        g_dbus_connection_signal_subscribe(bus_.connection(), nullptr, "org.a11y.atspi.Event.Object", "TextChanged",
                                           nullptr, nullptr, G_DBUS_SIGNAL_FLAGS_NONE, onSignal, this, nullptr);
    g_main_context_pop_thread_default(context_.get());
}

HeardTexts::~HeardTexts() {
    g_dbus_connection_signal_unsubscribe(bus_.connection(), subscription_);
}

void HeardTexts::listen() const {
    while (g_main_context_iteration(context_.get(), FALSE) != FALSE) {
    }
}

// Programs say nothing before somebody wants to hear it. The registry tells them that there is news, and they ask what:
// each has done so when it and the registry have answered once more after one another.
void HeardTexts::askForChanges(const ScreenReader::Reference& element) const {
    for (int round = 0; round < 2; ++round) {
        bus_.call({.destination = registry,
                   .path = "/org/a11y/atspi/registry",
                   .interface = registry,
                   .name = "RegisterEvent"},
                  g_variant_new("(sass)", eventName, nullptr, ""));
        reader_.states(element);
    }
}

void HeardTexts::begin(const ScreenReader::Element& element) {
    askForChanges(element.reference);
    listen();  // what changed before is in it already
    texts_[element.reference.path] = {.words = element.text, .insertions = 0};
}

HeardTexts::Text HeardTexts::text(const ScreenReader::Reference& element) {
    listen();
    return texts_.at(element.path);
}

void HeardTexts::hear(const std::string& path, GVariant* change) {
    const auto known = texts_.find(path);
    if (known == texts_.end()) return;
    Text& text = known->second;
    const char* kind = nullptr;
    int place = 0;
    int length = 0;
    g_variant_get_child(change, 0, "&s", &kind);
    g_variant_get_child(change, 1, "i", &place);
    g_variant_get_child(change, 2, "i", &length);
    const std::size_t begin = bytesBefore(text.words, place);
    if (std::string_view(kind) == "delete") {
        text.words.erase(begin, bytesBefore(text.words, place + length) - begin);
        return;
    }
    const Variant wrapped(g_variant_get_child_value(change, 3));
    const Variant words(g_variant_get_variant(wrapped.get()));
    text.words.insert(begin, g_variant_get_string(words.get(), nullptr));
    ++text.insertions;
}

}  // namespace ovrin
