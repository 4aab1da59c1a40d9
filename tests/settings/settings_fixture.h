// What the settings work with, without a desktop: fakes that write into one journal, and preferences in a folder of
// their own.
#pragma once

#include <gtest/gtest.h>

#include "app/app_icon_manager.h"
#include "base/virtual_loop.h"
#include "base/worker_executor.h"
#include "fakes/fake_application_icon.h"
#include "fakes/fake_http_client.h"
#include "fakes/fake_keychain.h"
#include "fakes/fake_login_item.h"
#include "fakes/fake_presenters.h"
#include "fakes/journal.h"
#include "fakes/temporary_directory.h"
#include "settings/settings_store.h"

namespace ovrin {

class SettingsTest : public ::testing::Test {
protected:
    SettingsStore::Surroundings surroundings() {
        return {
            .loop = loop,
            .worker = worker,
            .ioLoop = loop,
            .http = http,
            .client = client,
            .config = config,
            .defaults = defaults,
            .keychain = secrets,
            .toasts = toasts,
            .loginItem = loginItem,
            .environment = [this] { return Environment(variables); },
            .selectEntranceIcon = [this](EntranceIconStyle style) { icons.select(style); },
            .applyAppearance = [this](AppAppearanceMode mode) { journal.add("apply " + std::string(rawValue(mode))); },
            .applyResultWindowLevel = [this] { journal.add("level"); }};
    }

    // Until the worker has done what it was asked so far, and the loop what followed from it, twice over.
    void settle() {
        for (int round = 0; round < 2; ++round) {
            bool isDone = false;
            worker.post([&](const std::stop_token&) { loop.post([&] { isDone = true; }); });
            loop.runUntil([&] { return isDone; });
            loop.runPosted();
        }
    }

    Journal journal;
    TemporaryDirectory directory;
    Environment::Variables variables;
    FakeKeychain keychain;
    KeychainStore secrets{keychain};
    DefaultsStore defaults{directory.path() / "config" / "preferences.json"};
    AppConfig config{defaults, [this] { return Environment(variables); }, secrets};
    FakeToastPresenter toasts{journal};
    FakeLoginItem loginItem{journal};
    FakeApplicationIcon icon{journal};
    AppIconManager icons{config, defaults, icon};
    FakeHTTPClient http;
    VirtualLoop loop;
    ModelClient client{loop, http, [this] { return finished(config.modelAPIConfiguration()); }};
    WorkerExecutor worker{1};
};

}  // namespace ovrin
