// Seam: the text recogniser of the platform. One pass over one picture gives the visual lines of its text.
#pragma once

#include <algorithm>
#include <cstddef>
#include <stop_token>
#include <string>
#include <vector>

#include "base/geometry.h"
#include "base/image.h"

namespace ovrin {

enum class RecognitionLevel { accurate, fast };

struct TextRecognitionRequest {
    RecognitionLevel recognitionLevel = RecognitionLevel::accurate;
    bool usesLanguageCorrection = false;
    bool automaticallyDetectsLanguage = false;
    // BCP-47 tags, preferred first ("zh-Hans", "en-US"); scripts of other languages need not be read.
    std::vector<std::string> recognitionLanguages;
};

struct TextCandidate {
    std::string string;    // UTF-8, as read: not trimmed
    float confidence = 0;  // 0..1
};

// One visual line.
struct TextObservation {
    std::vector<TextCandidate> candidates;  // best first
    UnitRect boundingBox;                   // of the whole picture

    std::vector<TextCandidate> topCandidates(std::size_t count) const {
        return {candidates.begin(),
                candidates.begin() + static_cast<std::ptrdiff_t>(std::min(count, candidates.size()))};
    }
};

class TextRecognizer {
public:
    virtual ~TextRecognizer() = default;

    // The lines of the picture in reading order; empty when it holds no text. Blocks for as long as it takes; may be
    // called from several threads at once, never from the main thread. Throws Error whose description names the cause
    // (a missing or damaged model), and CancellationError soon after a stop is requested.
    virtual std::vector<TextObservation> perform(const TextRecognitionRequest& request, const Image& image,
                                                 std::stop_token stop) = 0;

    // Loads what the first perform() would load, so that it starts warm. Any thread but the main one; failures stay
    // silent here and come back from perform().
    virtual void prepare() = 0;

    // Frees everything that can be loaded again (models, work space). Any thread; waits for running passes.
    virtual void releaseResources() = 0;
};

}  // namespace ovrin
