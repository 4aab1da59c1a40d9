#include "recognition/vision_ocr_engine.h"

#include <chrono>
#include <exception>
#include <utility>

#include "base/error.h"
#include "base/worker_executor.h"
#include "recognition/detect_language.h"
#include "recognition/ocr_engine_error.h"

namespace ovrin {

namespace {

std::vector<TextObservation> perform(TextRecognizer& recognizer, const TextRecognitionRequest& request,
                                     const Image& image, std::stop_token stop) {
    try {
        return recognizer.perform(request, image, std::move(stop));
    } catch (const CancellationError&) {
        throw;
    } catch (...) {
        throw OCREngineError::recognitionFailed(errorDescription(std::current_exception()));
    }
}

std::vector<OCRParagraph> bestReadings(const std::vector<TextObservation>& observations) {
    std::vector<OCRParagraph> paragraphs;
    paragraphs.reserve(observations.size());
    for (const TextObservation& observation : observations) {
        for (TextCandidate& best : observation.topCandidates(1)) {
            paragraphs.push_back({.text = std::move(best.string),
                                  .confidence = best.confidence,
                                  .normalizedBoundingBox = observation.boundingBox});
        }
    }
    if (paragraphs.empty()) throw OCREngineError::noTextFound();
    return paragraphs;
}

}  // namespace

VisionOCREngine::VisionOCREngine(std::vector<std::string> recognitionLanguages, TextRecognizer& recognizer,
                                 const LanguageIdentifier& identifier, WorkerExecutor& workers, Clock clock)
    : recognitionLanguages_(std::move(recognitionLanguages)),
      recognizer_(recognizer),
      identifier_(identifier),
      workers_(workers),
      clock_(std::move(clock)) {}

Task<OCRResult> VisionOCREngine::recognize(Image image) {
    TextRecognitionRequest request{.recognitionLevel = RecognitionLevel::accurate,
                                   .usesLanguageCorrection = true,
                                   .automaticallyDetectsLanguage = true,
                                   .recognitionLanguages = recognitionLanguages_};
    // The run may outlive the engine when nobody waits for it any more, so it takes along all it needs. It has a name
    // because GCC 12 destroys the captures of a closure twice that is made inside the awaited expression.
    auto run = [request = std::move(request), image = std::move(image), clock = clock_, &recognizer = recognizer_,
                &identifier = identifier_](std::stop_token stop) {
        OCRResult result;
        result.paragraphs = bestReadings(perform(recognizer, request, image, std::move(stop)));
        result.detectedLanguage = detectLanguage(result.fullText(), identifier);
        result.createdAt = std::chrono::floor<std::chrono::microseconds>(clock());
        return result;
    };
    OCRResult result = co_await workers_.run(std::move(run));
    co_return result;
}

void VisionOCREngine::prepare() {
    workers_.post([&recognizer = recognizer_](const std::stop_token&) { recognizer.prepare(); });
}

}  // namespace ovrin
