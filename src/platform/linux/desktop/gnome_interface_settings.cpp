#include "platform/linux/desktop/gnome_interface_settings.h"

#include <utility>

#include <gio/gio.h>

namespace ovrin {

namespace {

constexpr const char* schemaId = "org.gnome.desktop.interface";

struct Unreference {
    void operator()(GSettings* settings) const { g_object_unref(settings); }
    void operator()(GSettingsSchema* schema) const { g_settings_schema_unref(schema); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using Settings = std::unique_ptr<GSettings, Unreference>;
using Schema = std::unique_ptr<GSettingsSchema, Unreference>;
using Value = std::unique_ptr<GVariant, Unreference>;

}  // namespace

struct GnomeInterfaceSettings::Source {
    explicit Source(std::function<void()> changed) : changed(std::move(changed)) {
        GSettingsSchemaSource* const source = g_settings_schema_source_get_default();
        schema.reset(source == nullptr ? nullptr : g_settings_schema_source_lookup(source, schemaId, TRUE));
        if (!schema) return;
        settings.reset(g_settings_new_full(schema.get(), nullptr, nullptr));
        g_signal_connect_swapped(settings.get(), "changed", G_CALLBACK(&notify), this);
    }
    ~Source() {
        if (settings) g_signal_handlers_disconnect_by_data(settings.get(), this);
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    static void notify(Source* source) { source->changed(); }

    // None when this version of the schema has no such key of that type.
    Value value(const char* key, const GVariantType* type) const {
        if (!settings || g_settings_schema_has_key(schema.get(), key) == FALSE) return nullptr;
        Value found(g_settings_get_value(settings.get(), key));
        return g_variant_is_of_type(found.get(), type) != FALSE ? std::move(found) : nullptr;
    }

    std::optional<std::string> string(const char* key) const {
        const Value found = value(key, G_VARIANT_TYPE_STRING);
        return found ? std::optional<std::string>(g_variant_get_string(found.get(), nullptr)) : std::nullopt;
    }

    std::function<void()> changed;
    Schema schema;
    Settings settings;
};

GnomeInterfaceSettings::GnomeInterfaceSettings(std::function<void()> changed)
    : source_(std::make_unique<Source>(std::move(changed))) {}

GnomeInterfaceSettings::~GnomeInterfaceSettings() = default;

std::optional<std::string> GnomeInterfaceSettings::colorScheme() const {
    return source_->string("color-scheme");
}

std::optional<std::string> GnomeInterfaceSettings::gtkTheme() const {
    return source_->string("gtk-theme");
}

std::optional<bool> GnomeInterfaceSettings::enablesAnimations() const {
    const Value found = source_->value("enable-animations", G_VARIANT_TYPE_BOOLEAN);
    return found ? std::optional(g_variant_get_boolean(found.get()) != FALSE) : std::nullopt;
}

}  // namespace ovrin
