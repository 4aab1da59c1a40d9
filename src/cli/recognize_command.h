// ovrin recognize: reads pictures and prints their text.
#pragma once

#include <functional>
#include <stop_token>

#include "cli/arguments.h"
#include "cli/terminal.h"

namespace ovrin {
class HistoryStore;
class ImageDecoder;
class OCREngine;
class RunLoop;
}  // namespace ovrin

namespace ovrin::cli {

struct RecognizeServices {
    Terminal& terminal;
    RunLoop& loop;
    const ImageDecoder& decoder;
    OCREngine& engine;
    std::function<HistoryStore&()> history;  // opened only when an entry is to be saved
    std::stop_token stop;
};

// One picture after another; a picture that fails is named on standard error and the others are read all the same.
// Returns the exit status. Throws OutputClosed, CancellationError, and Error when standard output fails.
int recognize(const Recognize& command, const RecognizeServices& services);

}  // namespace ovrin::cli
