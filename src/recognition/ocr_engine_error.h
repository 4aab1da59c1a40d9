// What can go wrong between a picture and its text, with the sentence that the user reads for it. Screen capture
// reports its unusable pictures with it too.
#pragma once

#include <string>

#include "base/error.h"

namespace ovrin {

class OCREngineError : public Error {
public:
    enum class Case { recognitionFailed, invalidImage, noTextFound };

    static OCREngineError recognitionFailed(const std::string& reason);
    static OCREngineError invalidImage();
    static OCREngineError noTextFound();

    Case errorCase() const { return case_; }

private:
    OCREngineError(Case errorCase, std::string description);

    Case case_;
};

}  // namespace ovrin
