// Keeps the controls of a page and the settings store in step: each control shows the store's value, and hands on what
// the user makes of it.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "base/watch.h"
#include "settings/settings_field.h"
#include "views/components/drawing.h"
#include "views/settings/settings_line.h"

namespace ovrin {

class OVSwitch;
class OVTextEditor;
class OVTextField;

// The store and the controls outlive it. Main thread.
class SettingsBinding {
public:
    using EditText = std::function<void(std::string text)>;

    void text(OVTextField& control, const SettingsField<std::string>& field, EditText edit);
    void text(OVTextEditor& control, const SettingsField<std::string>& field, EditText edit);
    void isOn(OVSwitch& control, const SettingsField<bool>& field, std::function<void(bool)> edit);

    template <typename Field>
    void line(SettingsLine& line, const Field& field) {
        watch(field.note(), [&line](const SettingsNote& note) { line.setNote(toQString(note.text)); });
        watch(field.error(), [&line](const std::string& error) { line.setError(toQString(error)); });
    }

    // Now and on every change.
    template <typename T, typename Handler>
    void watch(const Published<T>& field, Handler handler) {
        subscriptions_.push_back(ovrin::watch(field, std::move(handler)));
    }

private:
    std::vector<Subscription> subscriptions_;
};

}  // namespace ovrin
