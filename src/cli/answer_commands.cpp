#include "cli/answer_commands.h"

#include <optional>
#include <utility>

#include "base/async_stream.h"
#include "base/error.h"
#include "base/run_loop.h"
#include "base/text.h"
#include "cli/output_watch.h"
#include "language/ai_service.h"
#include "language/conversation_messages.h"
#include "language/translation_service.h"

namespace ovrin::cli {

namespace {

constexpr std::size_t largestInput = std::size_t{16} << 20U;  // bytes

// The words of the command, else standard input; trimmed, and repaired where it is not UTF-8.
std::string inputText(const std::optional<std::string>& words, const AnswerServices& services) {
    const std::string given = words ? *words : services.terminal.readAll(largestInput, services.stop);
    std::string input(text::trimmed(text::repairedUtf8(given)));
    if (input.empty()) throw Error("there is no text to send");
    return input;
}

// What has been printed of an answer, and the line feed that a terminal wants after it.
class AnswerPrinter {
public:
    explicit AnswerPrinter(Terminal& terminal) : terminal_(terminal) {}

    Task<void> printPieces(AsyncStream<AnswerChange> changes) {
        while (true) {
            const std::optional<AnswerChange> change = co_await changes.next();
            if (!change) co_return;
            // What has been printed stays: the answer begins below it.
            if (change->kind == AnswerChange::Kind::replaced) print(needsLineFeed_ ? "\n\n" : "\n");
            if (!change->text.empty()) print(change->text);
        }
    }

    Task<void> printWhole(Task<std::string> answer) {
        const std::string text = co_await std::move(answer);
        print(text);
    }

    void endLine() {
        if (needsLineFeed_ && terminal_.outputIsTerminal()) terminal_.write("\n");
        needsLineFeed_ = false;
    }

private:
    void print(const std::string& text) {
        terminal_.writeForeign(text);
        needsLineFeed_ = !text.ends_with('\n');
    }

    Terminal& terminal_;
    bool needsLineFeed_ = false;
};

// The end of whoever reads the answer, like a stop, is the end of the request.
void runWhileRead(Task<void> printing, const AnswerServices& services) {
    const OutputWatch watch(services.terminal.output(), services.stop);
    try {
        services.loop.complete(std::move(printing), watch.token());
    } catch (const CancellationError&) {
        if (watch.readerHasGone()) throw OutputClosed();
        throw;
    }
}

template <typename MakePrinting>
int printAnswer(const AnswerServices& services, const MakePrinting& makePrinting) {
    AnswerPrinter printer(services.terminal);
    try {
        runWhileRead(makePrinting(printer), services);
    } catch (const OutputClosed&) {
        throw;
    } catch (...) {
        printer.endLine();
        throw;
    }
    printer.endLine();
    return 0;
}

Task<std::string> translatedText(Task<TranslationResult> translation) {
    const TranslationResult result = co_await std::move(translation);
    co_return result.translatedText;
}

}  // namespace

int translate(const Translate& command, const TranslationService& service, const std::string& defaultTarget,
              const AnswerServices& services) {
    const std::string text = inputText(command.text, services);
    const std::string target = command.targetLanguage.value_or(defaultTarget);
    return printAnswer(services, [&](AnswerPrinter& printer) {
        return command.delivery == AnswerDelivery::pieces
                   ? printer.printPieces(service.stream(text, target))
                   : printer.printWhole(translatedText(service.translate(text, target)));
    });
}

int ask(const Ask& command, const AIService& service, const ConversationPrompts& prompts,
        const std::string& defaultTarget, const AnswerServices& services) {
    const std::string question = inputText(command.question, services);
    const auto messages = directChatMessages(prompts, prompts.replyLanguage(defaultTarget), {}, question);
    return printAnswer(services, [&](AnswerPrinter& printer) {
        return command.delivery == AnswerDelivery::pieces ? printer.printPieces(service.stream(messages))
                                                          : printer.printWhole(service.complete(messages));
    });
}

}  // namespace ovrin::cli
