// Turns a picture into its text. The rest of the program holds an engine by this interface only.
#pragma once

#include "base/image.h"
#include "base/task.h"
#include "recognition/ocr_result.h"

namespace ovrin {

class OCREngine {
public:
    virtual ~OCREngine() = default;

    // The text of the picture, never empty. Works in the background and gives its result on the awaiting loop; calls
    // may overlap. Throws OCREngineError, and CancellationError when the awaiting task is stopped.
    virtual Task<OCRResult> recognize(Image image) = 0;

    // Loads in the background what the next recognize() needs, so that it starts warm. Returns at once.
    virtual void prepare() = 0;
};

}  // namespace ovrin
