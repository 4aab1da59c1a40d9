#include "desktop/keyring.h"

#include <csignal>
#include <cstddef>
#include <fstream>

#include "desktop/wait.h"

namespace ovrin {
namespace {

constexpr const char* serviceName = "org.freedesktop.secrets";
constexpr const char* prompterName = "org.gnome.keyring.SystemPrompter";
constexpr const char* prompterProgram = "/usr/libexec/gcr-prompter";

Variant firstOf(const Variant& tuple) {
    return Variant(g_variant_get_child_value(tuple.get(), 0));
}

}  // namespace

Keyring::Keyring(const PrivateDesktop& desktop) : desktop_(desktop) {
    offerPrompt();
    daemon_ = desktop.start({.arguments = {"gnome-keyring-daemon", "--foreground", "--components=secrets", "--unlock"},
                             .inputText = password});
    waitFor("the secret service", [this] { return desktop_.bus().hasOwner(serviceName); });
    waitFor("the keyring", [this] {
        const Variant reply = desktop_.bus().call(serviceMethod("ReadAlias"), g_variant_new("(s)", "default"));
        return std::string(g_variant_get_string(firstOf(reply).get(), nullptr)) != "/";
    });
}

// Started by the bus, as on any desktop: it ends when it has had nothing to ask for some seconds.
void Keyring::offerPrompt() const {
    std::string command = "/usr/bin/env";
    for (const std::string& variable : desktop_.environment()) command += " '" + variable + "'";
    std::ofstream(desktop_.servicesFolder() / (std::string(prompterName) + ".service"))
        << "[D-BUS Service]\nName=" << prompterName << "\nExec=" << command << ' ' << prompterProgram << '\n';
    desktop_.bus().call({.destination = "org.freedesktop.DBus",
                         .path = "/org/freedesktop/DBus",
                         .interface = "org.freedesktop.DBus",
                         .name = "ReloadConfig"});
}

BusView::Method Keyring::serviceMethod(const char* name) const {
    return {.destination = serviceName,
            .path = "/org/freedesktop/secrets",
            .interface = "org.freedesktop.Secret.Service",
            .name = name};
}

void Keyring::lock() const {
    const Variant alias = desktop_.bus().call(serviceMethod("ReadAlias"), g_variant_new("(s)", "default"));
    const std::string collection = g_variant_get_string(firstOf(alias).get(), nullptr);
    const char* const collections[] = {collection.c_str(), nullptr};
    desktop_.bus().call(serviceMethod("Lock"), g_variant_new("(^ao)", collections));
}

void Keyring::freeze() const {
    daemon_->signal(SIGSTOP);
}

std::optional<std::string> Keyring::secret(const std::string& account) const {
    const Variant opened =
        desktop_.bus().call(serviceMethod("OpenSession"), g_variant_new("(sv)", "plain", g_variant_new_string("")));
    const char* session = nullptr;
    g_variant_get_child(opened.get(), 1, "&o", &session);

    GVariantBuilder attributes;
    g_variant_builder_init(&attributes, G_VARIANT_TYPE("a{ss}"));
    g_variant_builder_add(&attributes, "{ss}", "service", "com.quel.ovrin");
    g_variant_builder_add(&attributes, "{ss}", "account", account.c_str());
    const Variant reply = desktop_.bus().call(serviceMethod("SearchItems"), g_variant_new("(a{ss})", &attributes));
    const Variant unlocked = firstOf(reply);
    if (g_variant_n_children(unlocked.get()) == 0) return std::nullopt;

    const char* item = nullptr;
    g_variant_get_child(unlocked.get(), 0, "&o", &item);
    const Variant answer = desktop_.bus().call(
        {.destination = serviceName, .path = item, .interface = "org.freedesktop.Secret.Item", .name = "GetSecret"},
        g_variant_new("(o)", session));
    const Variant secret = firstOf(answer);
    const Variant bytes(g_variant_get_child_value(secret.get(), 2));
    std::size_t size = 0;
    const auto* const data = static_cast<const char*>(g_variant_get_fixed_array(bytes.get(), &size, 1));
    return std::string(data, size);
}

}  // namespace ovrin
