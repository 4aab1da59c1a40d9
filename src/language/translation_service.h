// Turns a text into a request for its translation: finds the language it is in, picks the target, writes the prompt.
//
// A text that is already in the wanted language goes to English, or to Simplified Chinese when English was wanted. A
// value without state of its own, usable from any thread; the identifier must outlive it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/async_stream.h"
#include "base/date_time.h"
#include "base/task.h"
#include "language/translation_result.h"
#include "model/deep_seek_types.h"
#include "model/model_client.h"
#include "platform/language_identifier.h"

namespace ovrin {

class TranslationService {
public:
    // The user's own translation prompt; the empty text when there is none. Read anew for every translation.
    using PromptOverride = std::function<std::string()>;

    TranslationService(ModelClient client, const LanguageIdentifier& identifier, PromptOverride promptOverride,
                       Clock clock);

    // The tag of the language that dominates the text; none for a text of fewer than two characters.
    std::optional<std::string> detectLanguage(std::string_view of) const;

    // The target after the automatic switch, for a text in the detected language.
    static std::string effectiveTargetLanguage(const std::optional<std::string>& detected,
                                               std::string_view targetLanguage);

    // The prompt and the text, unchanged; the target is the effective one.
    std::vector<DeepSeek::Message> messages(std::string_view text, std::string_view targetLanguage) const;

    // The whole translation. Fails with the model client's error.
    Task<TranslationResult> translate(std::string text, std::string targetLanguage) const;

    // The pieces of the translation as they arrive. Ends with the model client's error; dropping it ends the request.
    AsyncStream<AnswerChange> stream(std::string_view text, std::string_view targetLanguage) const;

private:
    static Task<TranslationResult> run(TranslationService service, std::string text, std::string targetLanguage);

    ModelClient client_;
    const LanguageIdentifier* identifier_;
    PromptOverride promptOverride_;
    Clock clock_;
};

}  // namespace ovrin
