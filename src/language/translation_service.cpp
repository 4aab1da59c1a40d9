#include "language/translation_service.h"

#include <utility>

#include "language/language_names.h"
#include "recognition/detect_language.h"
#include "storage/app_config.h"

namespace ovrin {

namespace {

constexpr double temperature = 0.2;

void replaceAll(std::string& text, std::string_view pattern, std::string_view replacement) {
    for (std::size_t at = text.find(pattern); at != std::string::npos; at = text.find(pattern, at)) {
        text.replace(at, pattern.size(), replacement);
        at += replacement.size();
    }
}

std::string builtInPrompt(std::string_view name, std::string_view tag) {
    std::string prompt = "You are a precise professional translator. Translate the user's text into ";
    prompt.append(name).append(" (BCP-47: ").append(tag);
    return prompt + "). Preserve paragraphs, formatting, tone, names, numbers, and code. Return only the translation.";
}

}  // namespace

TranslationService::TranslationService(ModelClient client, const LanguageIdentifier& identifier,
                                       PromptOverride promptOverride, Clock clock)
    : client_(std::move(client)),
      identifier_(&identifier),
      promptOverride_(std::move(promptOverride)),
      clock_(std::move(clock)) {}

std::optional<std::string> TranslationService::detectLanguage(std::string_view of) const {
    return ovrin::detectLanguage(of, *identifier_);
}

std::string TranslationService::effectiveTargetLanguage(const std::optional<std::string>& detected,
                                                        std::string_view targetLanguage) {
    if (!detected) return std::string(targetLanguage);
    const std::string target = AppConfig::normalizeLanguageTag(targetLanguage);
    if (AppConfig::normalizeLanguageTag(*detected) != target) return std::string(targetLanguage);
    return target == "en" ? "zh-Hans" : "en";
}

std::vector<DeepSeek::Message> TranslationService::messages(std::string_view text,
                                                            std::string_view targetLanguage) const {
    const std::string name = englishLanguageName(targetLanguage);
    std::string prompt = promptOverride_();
    replaceAll(prompt, "{language}", name);
    replaceAll(prompt, "{tag}", targetLanguage);
    if (prompt.empty()) prompt = builtInPrompt(name, targetLanguage);
    return {{.role = "system", .content = std::move(prompt)}, {.role = "user", .content = std::string(text)}};
}

Task<TranslationResult> TranslationService::translate(std::string text, std::string targetLanguage) const {
    return run(*this, std::move(text), std::move(targetLanguage));
}

AsyncStream<AnswerChange> TranslationService::stream(std::string_view text, std::string_view targetLanguage) const {
    const std::string target = effectiveTargetLanguage(detectLanguage(text), targetLanguage);
    return client_.stream(messages(text, target), temperature);
}

Task<TranslationResult> TranslationService::run(TranslationService service, std::string text,
                                                std::string targetLanguage) {
    const auto detected = service.detectLanguage(text);
    const std::string target = effectiveTargetLanguage(detected, targetLanguage);
    std::string reply = co_await service.client_.complete(service.messages(text, target), temperature);
    TranslationResult result{.id = Uuid::random(),
                             .sourceText = std::move(text),
                             .translatedText = std::move(reply),
                             .sourceLanguage = detected,
                             .targetLanguage = target,
                             .createdAt = service.clock_()};
    co_return result;
}

}  // namespace ovrin
