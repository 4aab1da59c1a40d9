#include "cli/answer_commands.h"

#include <optional>
#include <utility>

#include "base/async_stream.h"
#include "base/error.h"
#include "base/run_loop.h"
#include "base/text.h"
#include "language/ai_service.h"
#include "language/conversation_messages.h"
#include "language/translation_service.h"

namespace ovrin::cli {

namespace {

constexpr std::size_t largestInput = std::size_t{16} << 20U;  // bytes

// The words of the command, else standard input; trimmed, and repaired where it is not UTF-8.
std::string inputText(const std::optional<std::string>& words, Terminal& terminal) {
    const std::string given = words ? *words : terminal.readAll(largestInput);
    std::string input(text::trimmed(text::repairedUtf8(given)));
    if (input.empty()) throw Error("there is no text to send");
    return input;
}

// What has been printed of an answer, and the line feed that a terminal wants after it.
class AnswerPrinter {
public:
    explicit AnswerPrinter(Terminal& terminal) : terminal_(terminal) {}

    Task<void> print(AsyncStream<std::string> pieces) {
        while (true) {
            const std::optional<std::string> piece = co_await pieces.next();
            if (!piece) co_return;
            terminal_.write(*piece);
            needsLineFeed_ = !piece->ends_with('\n');
        }
    }

    void endLine() {
        if (needsLineFeed_ && terminal_.outputIsTerminal()) terminal_.write("\n");
        needsLineFeed_ = false;
    }

private:
    Terminal& terminal_;
    bool needsLineFeed_ = false;
};

int printAnswer(AsyncStream<std::string> pieces, const AnswerServices& services) {
    AnswerPrinter printer(services.terminal);
    try {
        services.loop.complete(printer.print(std::move(pieces)), services.stop);
    } catch (const OutputClosed&) {
        throw;
    } catch (...) {
        printer.endLine();
        throw;
    }
    printer.endLine();
    return 0;
}

}  // namespace

int translate(const Translate& command, const TranslationService& service, const std::string& defaultTarget,
              const AnswerServices& services) {
    const std::string text = inputText(command.text, services.terminal);
    return printAnswer(service.stream(text, command.targetLanguage.value_or(defaultTarget)), services);
}

int ask(const Ask& command, const AIService& service, const ConversationPrompts& prompts,
        const std::string& defaultTarget, const AnswerServices& services) {
    const std::string question = inputText(command.question, services.terminal);
    const std::string replyLanguage = prompts.replyLanguage(defaultTarget);
    return printAnswer(service.stream(directChatMessages(prompts, replyLanguage, {}, question)), services);
}

}  // namespace ovrin::cli
