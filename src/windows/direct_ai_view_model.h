// The free chat without its window: the question that is being typed, and the turns of the conversation.
//
// Main thread. One answer streams at a time; destroying the model ends it. It must not be destroyed from inside one of
// its notifications.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/event_loop.h"
#include "base/published.h"
#include "base/running_task.h"
#include "base/task.h"
#include "base/uuid.h"
#include "language/ai_service.h"
#include "language/conversation_prompts.h"
#include "windows/thinking_time.h"

namespace ovrin {

class HistoryStore;

class DirectAIViewModel {
public:
    // A question and its answer, which grows while it streams.
    struct Turn {
        Uuid id;
        std::string question;
        std::string answer;
        bool isStreaming = false;
        bool isBlank = false;  // the answer ended without text

        bool operator==(const Turn&) const = default;
    };

    // What the model works with; the references outlive it.
    struct Services {
        EventLoop& loop;
        AIService ai;
        const ConversationPrompts& prompts;
        HistoryStore& history;
    };

    // replyLanguage: a BCP-47 tag; the user's first preferred language when it is empty.
    DirectAIViewModel(std::string_view replyLanguage, Services services);
    DirectAIViewModel(const DirectAIViewModel&) = delete;
    DirectAIViewModel& operator=(const DirectAIViewModel&) = delete;

    const Published<std::string>& draft() const { return draft_; }
    const Published<std::vector<Turn>>& turns() const { return turns_; }  // oldest first
    const Published<bool>& isStreaming() const { return isStreaming_; }
    const Published<std::optional<std::string>>& errorMessage() const { return errorMessage_; }
    // Beside the note of what streams: how long the model has been thinking; empty when it does not.
    const Published<std::string>& thinking() const { return thinking_.words(); }
    const std::string& replyLanguage() const { return replyLanguage_; }

    bool canSend() const;
    // The user-perceived characters of all answers: differs whenever there is more to read.
    std::size_t streamedCharacterCount() const;

    void setDraft(std::string draft) { draft_.set(std::move(draft)); }

    // Asks what is in the draft, with all answered turns as its history. Nothing while an answer streams.
    void send();
    void cancel();           // ends what streams; what has arrived stays
    void newConversation();  // forgets all turns and the draft

private:
    Task<void> consumeAnswer(Uuid id, std::vector<DeepSeek::Message> messages);
    void saveToHistory(const Uuid& id);
    void changeTurn(const Uuid& id, const std::function<void(Turn&)>& change);

    Services services_;
    std::string replyLanguage_;
    Published<std::string> draft_;
    Published<std::vector<Turn>> turns_;
    Published<bool> isStreaming_;
    Published<std::optional<std::string>> errorMessage_;
    ThinkingTime thinking_;
    TaskSlot activeTask_;  // the last member: it ends before what it uses
};

}  // namespace ovrin
