#include "windows/direct_ai_view_model.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "language/conversation_messages.h"
#include "storage/history_store.h"
#include "windows/answer_reading.h"

namespace ovrin {

DirectAIViewModel::DirectAIViewModel(std::string_view replyLanguage, Services services)
    : services_(std::move(services)),
      replyLanguage_(services_.prompts.replyLanguage(replyLanguage)),
      thinking_(services_.loop),
      activeTask_(services_.loop) {}

bool DirectAIViewModel::canSend() const {
    return !text::trimmed(draft_.value()).empty() && !isStreaming_.value();
}

std::size_t DirectAIViewModel::streamedCharacterCount() const {
    std::size_t count = 0;
    for (const Turn& turn : turns_.value()) count += text::characterCount(turn.answer);
    return count;
}

void DirectAIViewModel::send() {
    if (!canSend()) return;
    const std::string question(text::trimmed(draft_.value()));
    std::vector<Turn> turns = turns_.value();
    std::vector<ConversationTurn> earlier;
    earlier.reserve(turns.size());
    for (const Turn& turn : turns) earlier.push_back({.question = turn.question, .answer = turn.answer});

    draft_.set("");
    errorMessage_.set(std::nullopt);
    isStreaming_.set(true);
    const Uuid id = Uuid::random();
    turns.push_back({.id = id, .question = question, .answer = "", .isStreaming = true});
    turns_.set(std::move(turns));
    activeTask_.replace(consumeAnswer(id, directChatMessages(services_.prompts, replyLanguage_, earlier, question)));
}

Task<void> DirectAIViewModel::consumeAnswer(Uuid id, std::vector<DeepSeek::Message> messages) {
    std::function<void(const AnswerChange&)> take = [this, id](const AnswerChange& change) {
        changeTurn(id, [&change](Turn& turn) { change.applyTo(turn.answer); });
    };
    AnswerEnd end = co_await readAnswer(services_.ai.stream(std::move(messages)), std::move(take), thinking_);
    if (end.kind == AnswerEnd::Kind::complete) {
        saveToHistory(id);
    } else {
        errorMessage_.set(std::move(end.errorMessage));
    }
    isStreaming_.set(false);
    changeTurn(id, [&end](Turn& turn) {
        turn.isStreaming = false;
        turn.isBlank = end.isBlank(turn.answer);
    });
}

void DirectAIViewModel::saveToHistory(const Uuid& id) {
    const auto turn = std::ranges::find(turns_.value(), id, &Turn::id);
    if (turn == turns_->end() || turn->answer.empty()) return;
    services_.history.save(
        {.sourceText = turn->question, .resultText = turn->answer, .recordType = historyRecordType::directAI});
}

void DirectAIViewModel::changeTurn(const Uuid& id, const std::function<void(Turn&)>& change) {
    std::vector<Turn> turns = turns_.value();
    const auto turn = std::ranges::find(turns, id, &Turn::id);
    if (turn == turns.end()) return;
    change(*turn);
    turns_.set(std::move(turns));
}

void DirectAIViewModel::cancel() {
    activeTask_.cancel();
    isStreaming_.set(false);
    std::vector<Turn> turns = turns_.value();
    for (Turn& turn : turns) turn.isStreaming = false;
    turns_.set(std::move(turns));
}

void DirectAIViewModel::newConversation() {
    activeTask_.cancel();
    turns_.set({});
    draft_.set("");
    errorMessage_.set(std::nullopt);
    isStreaming_.set(false);
}

}  // namespace ovrin
