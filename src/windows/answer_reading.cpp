#include "windows/answer_reading.h"

#include <exception>

#include "base/error.h"

namespace ovrin {

Task<AnswerEnd> readAnswer(AsyncStream<std::string> pieces, std::function<void(const std::string& piece)> append) {
    AnswerEnd end;
    try {
        while (true) {
            const std::optional<std::string> piece = co_await pieces.next();
            if (!piece) break;
            append(*piece);
        }
    } catch (const CancellationError&) {
        end.kind = AnswerEnd::Kind::failed;
    } catch (...) {
        end = {.kind = AnswerEnd::Kind::failed, .errorMessage = errorDescription(std::current_exception())};
    }
    co_return end;
}

}  // namespace ovrin
