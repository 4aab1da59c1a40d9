// The engine over the platform's text recogniser: one accurate pass over the whole picture, the best reading of every
// line, the language of the whole, the time.
#pragma once

#include <string>
#include <vector>

#include "base/date_time.h"
#include "platform/language_identifier.h"
#include "platform/text_recognizer.h"
#include "recognition/ocr_engine.h"

namespace ovrin {

class WorkerExecutor;

class VisionOCREngine final : public OCREngine {
public:
    // recognitionLanguages: BCP-47 tags, preferred first. The clock is read on a worker when a run finishes. Recogniser
    // and identifier have to outlive the work of the workers, and the workers the engine. No state between calls.
    VisionOCREngine(std::vector<std::string> recognitionLanguages, TextRecognizer& recognizer,
                    const LanguageIdentifier& identifier, WorkerExecutor& workers, Clock clock);

    const std::vector<std::string>& recognitionLanguages() const { return recognitionLanguages_; }

    Task<OCRResult> recognize(Image image) override;
    void prepare() override;

private:
    const std::vector<std::string> recognitionLanguages_;
    TextRecognizer& recognizer_;
    const LanguageIdentifier& identifier_;
    WorkerExecutor& workers_;
    const Clock clock_;
};

}  // namespace ovrin
