// ovrin translate and ovrin ask: an answer of the model service on standard output, piece by piece as it arrives.
#pragma once

#include <stop_token>
#include <string>

#include "cli/arguments.h"
#include "cli/terminal.h"

namespace ovrin {
class AIService;
class ConversationPrompts;
class RunLoop;
class TranslationService;
}  // namespace ovrin

namespace ovrin::cli {

struct AnswerServices {
    Terminal& terminal;
    RunLoop& loop;
    std::stop_token stop;
};

// They return the exit status. Throw Error (nothing to send, and what the service failed with, after whatever arrived
// before), OutputClosed, and CancellationError when stopped; the request is over then.
// defaultTarget: the tag to translate to when the command names none.
int translate(const Translate& command, const TranslationService& service, const std::string& defaultTarget,
              const AnswerServices& services);

// The assistant answers in the language of the default target.
int ask(const Ask& command, const AIService& service, const ConversationPrompts& prompts,
        const std::string& defaultTarget, const AnswerServices& services);

}  // namespace ovrin::cli
