// The program's own actions, written down.
#pragma once

#include <optional>
#include <string>

#include "fakes/journal.h"
#include "settings/application_actions.h"

namespace ovrin {

class FakeApplicationActions final : public ApplicationActions {
public:
    explicit FakeApplicationActions(Journal& journal) : journal_(journal) {}

    bool knowsUpdates = true;

    void showHistory() override { journal_.add("showHistory"); }
    void showSettings(std::optional<SettingsSection> section) override {
        journal_.add(section ? "showSettings " + std::string(commandName(*section)) : "showSettings");
    }
    bool isUpdateConfigured() const override { return knowsUpdates; }
    void checkForUpdates() override { journal_.add("checkForUpdates"); }
    void reload() override { journal_.add("reload"); }
    void quit() override { journal_.add("quit"); }

private:
    Journal& journal_;
};

}  // namespace ovrin
