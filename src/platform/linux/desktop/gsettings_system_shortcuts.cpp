#include "platform/linux/desktop/gsettings_system_shortcuts.h"

#include <memory>
#include <string_view>
#include <utility>

#include <gio/gio.h>

#include "platform/linux/desktop/accelerator.h"

namespace ovrin {

namespace {

using Shortcuts = std::vector<KeyboardShortcuts::Shortcut>;

struct Unreference {
    void operator()(GSettings* settings) const { g_object_unref(settings); }
    void operator()(GSettingsSchema* schema) const { g_settings_schema_unref(schema); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
    void operator()(char** strings) const { g_strfreev(strings); }
};
using Settings = std::unique_ptr<GSettings, Unreference>;
using Schema = std::unique_ptr<GSettingsSchema, Unreference>;
using Variant = std::unique_ptr<GVariant, Unreference>;
using Strings = std::unique_ptr<char*, Unreference>;

Schema installedSchema(const std::string& id) {
    GSettingsSchemaSource* const source = g_settings_schema_source_get_default();
    return Schema(source == nullptr ? nullptr : g_settings_schema_source_lookup(source, id.c_str(), TRUE));
}

void addBindings(GVariant* value, const KeyboardLayout& layout, Shortcuts& shortcuts) {
    const auto add = [&](std::string_view text) {
        if (const auto shortcut = parseAngledAccelerator(text, layout)) shortcuts.push_back(*shortcut);
    };
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING)) {
        add(g_variant_get_string(value, nullptr));
    } else if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING_ARRAY)) {
        const Strings texts(g_variant_dup_strv(value, nullptr));
        for (char** text = texts.get(); *text != nullptr; ++text) add(*text);
    }
}

// Bindings that the user made live under paths of their own, listed by the schema that the others are in.
void addCustomBindings(const std::string& schemaId, GSettings* settings, const KeyboardLayout& layout,
                       Shortcuts& shortcuts) {
    const auto customSchema = installedSchema(schemaId + ".custom-keybinding");
    if (!customSchema || g_settings_schema_has_key(customSchema.get(), "binding") == FALSE) return;
    const Strings paths(g_settings_get_strv(settings, "custom-keybindings"));
    for (char** path = paths.get(); *path != nullptr; ++path) {
        const Settings custom(g_settings_new_full(customSchema.get(), nullptr, *path));
        const Variant binding(g_settings_get_value(custom.get(), "binding"));
        addBindings(binding.get(), layout, shortcuts);
    }
}

void addSchema(const std::string& id, const KeyboardLayout& layout, Shortcuts& shortcuts) {
    const auto schema = installedSchema(id);
    // A relocatable schema has no values without a path.
    if (!schema || g_settings_schema_get_path(schema.get()) == nullptr) return;
    const Settings settings(g_settings_new_full(schema.get(), nullptr, nullptr));
    const Strings keys(g_settings_schema_list_keys(schema.get()));
    for (char** key = keys.get(); *key != nullptr; ++key) {
        if (std::string_view(*key) == "custom-keybindings") {
            addCustomBindings(id, settings.get(), layout, shortcuts);
        } else {
            const Variant value(g_settings_get_value(settings.get(), *key));
            addBindings(value.get(), layout, shortcuts);
        }
    }
}

}  // namespace

GSettingsSystemShortcuts::GSettingsSystemShortcuts(std::vector<std::string> schemas, const KeyboardLayout& layout)
    : schemas_(std::move(schemas)), layout_(layout) {}

Shortcuts GSettingsSystemShortcuts::enabledShortcuts() const {
    Shortcuts shortcuts;
    const auto layout = layout_.snapshot();
    for (const auto& schema : schemas_) addSchema(schema, *layout, shortcuts);
    return shortcuts;
}

}  // namespace ovrin
