#include "windows/answer_reading.h"

#include <exception>
#include <utility>

#include "base/error.h"
#include "base/text.h"

namespace ovrin {

bool AnswerEnd::isBlank(std::string_view answer) const {
    return kind == Kind::complete && text::trimmed(answer).empty();
}

Task<AnswerEnd> readAnswer(AsyncStream<AnswerChange> changes, std::function<void(const AnswerChange& change)> take,
                           ThinkingTime& thinking) {
    AnswerEnd end;
    const ThinkingTime::Reading reading(thinking);
    try {
        while (true) {
            const std::optional<AnswerChange> change = co_await changes.next();
            if (!change) break;
            if (change->kind == AnswerChange::Kind::thinking) {
                thinking.begin();
            } else {
                thinking.end();
                take(*change);
            }
        }
    } catch (const CancellationError&) {
        end.kind = AnswerEnd::Kind::failed;
    } catch (...) {
        end = {.kind = AnswerEnd::Kind::failed, .errorMessage = errorDescription(std::current_exception())};
    }
    co_return end;
}

Task<AnswerEnd> readAnswerInto(Published<std::string>& text, AsyncStream<AnswerChange> changes,
                               ThinkingTime& thinking) {
    const auto take = [&text](const AnswerChange& change) {
        std::string whole = text.value();
        change.applyTo(whole);
        text.set(std::move(whole));
    };
    return readAnswer(std::move(changes), take, thinking);
}

}  // namespace ovrin
