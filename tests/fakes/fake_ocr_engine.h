// An engine whose results the test gives.
#pragma once

#include "fakes/deferred.h"
#include "fakes/journal.h"
#include "recognition/ocr_engine.h"

namespace ovrin {

class FakeOCREngine final : public OCREngine {
public:
    explicit FakeOCREngine(Journal& journal) : journal_(journal) {}

    Deferred<OCRResult> result;
    Image lastImage;

    Task<OCRResult> recognize(Image image) override {
        journal_.add("recognition");
        lastImage = image;
        return result.result();
    }
    void prepare() override { journal_.add("engine prepares"); }

private:
    Journal& journal_;
};

}  // namespace ovrin
