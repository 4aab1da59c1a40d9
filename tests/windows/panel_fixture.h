// The surroundings of windows that show answers: a model service that streams what the test pushes, preferences, and a
// history, a clipboard and toasts that write into one journal.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "base/error.h"
#include "base/virtual_loop.h"
#include "fakes/fake_clipboard_service.h"
#include "fakes/fake_http_client.h"
#include "fakes/fake_keychain.h"
#include "fakes/fake_language_identifier.h"
#include "fakes/fake_presenters.h"
#include "fakes/fake_speech_synthesizer.h"
#include "fakes/journal.h"
#include "fakes/temporary_directory.h"
#include "storage/app_config.h"
#include "storage/defaults_store.h"
#include "storage/history_store.h"
#include "storage/keychain_store.h"
#include "windows/result_panel_view_model.h"

namespace ovrin {

using Events = std::vector<std::string>;

struct PanelTest : testing::Test {
    PanelTest() = default;
    PanelTest(const PanelTest&) = delete;
    PanelTest& operator=(const PanelTest&) = delete;
    // What the panels of a test gave up when they went comes to its end while the service is still there.
    ~PanelTest() override { loop.runPosted(); }

    ResultPanelViewModel::Services services() {
        return {.loop = loop,
                .translation = TranslationService(
                    client, identifier, [] { return std::string(); }, [] { return Timestamp(); }),
                .ai = AIService(client),
                .prompts = prompts,
                .history = history,
                .clipboard = clipboard,
                .toasts = toasts,
                .makeSpeech = [this] {
                    auto made = std::make_unique<FakeSpeechSynthesizer>(journal, hasVoice);
                    speech = made.get();
                    return made;
                }};
    }

    static std::string event(const std::string& piece) {
        return "data: " + nlohmann::json{{"choices", {{{"delta", {{"content", piece}}}}}}}.dump() + "\n";
    }

    // The next request's answer begins with the piece and stays open.
    void willStream(const std::string& piece) {
        http.willAnswer({.chunks = {event(piece)}, .ending = FakeHTTPClient::Ending::staysOpen});
    }
    void willAnswer(const std::string& text) { http.willAnswer({.chunks = {event(text)}}); }
    void push(const std::string& piece) {
        http.openBody().push(event(piece));
        loop.runPosted();
    }
    void finish() {
        http.openBody().finish();
        loop.runPosted();
    }

    nlohmann::json lastMessages() const { return nlohmann::json::parse(http.requests().back().body).at("messages"); }

    // The roles and contents of the newest request's messages after its system prompt.
    Events lastRequest() const {
        Events lines;
        for (const auto& message : lastMessages()) {
            if (message["role"] == "system") continue;
            lines.push_back(message["role"].get<std::string>() + ": " + message["content"].get<std::string>());
        }
        return lines;
    }
    std::string lastSystemPrompt() const { return lastMessages()[0]["content"]; }
    std::size_t requests() const { return http.requests().size(); }

    std::optional<std::string> latestResult() const { return history.records()->front()->resultText; }

    Journal journal;
    VirtualLoop loop;
    TemporaryDirectory directory;
    DefaultsStore defaults{directory.path() / "preferences.json"};
    FakeKeychain keychain;
    KeychainStore keychainStore{keychain};
    Environment::Variables variables;  // those that the configuration sees
    AppConfig config{defaults, [this] { return Environment(variables); }, keychainStore};
    FakeHTTPClient http;
    FakeLanguageIdentifier identifier;
    ModelClient client{loop, http, [] {
                           return finished(ModelAPIConfiguration{.connectionURL = "https://h.example",
                                                                 .apiKey = "k",
                                                                 .model = "m",
                                                                 .customHeaders = {},
                                                                 .maxOutputTokens = 1});
                       }};
    ConversationPrompts prompts{[] {
                                    return Environment(Environment::Variables{{"LANG", "ja_JP.UTF-8"}});
                                },
                                [](std::size_t) { return std::size_t{0}; }};
    HistoryStore history{directory.path() / "history.json", text::CaseRules::general, [] { return Timestamp(); }};
    FakeClipboardService clipboard{journal};
    FakeToastPresenter toasts{journal};
    bool hasVoice = true;
    FakeSpeechSynthesizer* speech = nullptr;  // made by the panel
};

}  // namespace ovrin
