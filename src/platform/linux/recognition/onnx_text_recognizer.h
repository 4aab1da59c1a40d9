// The text recogniser: PP-OCR networks in ONNX Runtime find and read lines of Chinese, Japanese and the languages in
// Latin letters, Tesseract reads the scripts that they don't know.
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>

#include "platform/text_recognizer.h"

namespace ovrin {

// Where the recogniser's files lie.
struct RecognitionFiles {
    std::filesystem::path modelFolder;                                 // the networks
    std::filesystem::path tesseractFolder;                             // *.traineddata
    std::string recognitionModel = recognitionModelOfThisProcessor();  // which of the networks that read lines

    // The network whose wide layers are made of bytes reads in half of the time where the processor multiplies bytes,
    // and as well as the original: 95.5 and 95.1 % of the lines of 29 screenshots. Older processors would lose the
    // upper bits of its sums.
    static std::string recognitionModelOfThisProcessor();

    // Those that came with this program: share/ovrin/models beside the executable (where it was built) or one folder
    // up (where it is installed), and Tesseract's data where TESSDATA_PREFIX says or the distribution keeps it.
    static RecognitionFiles ofThisProgram();
};

class OnnxTextRecognizer : public TextRecognizer {
public:
    // Keeps the inference runtime from reporting on the user, whatever the process environment says, by changing that:
    // call it before there is a second thread. A recogniser made without does it itself.
    static void forbidTelemetry();

    // Loads nothing yet.
    explicit OnnxTextRecognizer(RecognitionFiles files);
    ~OnnxTextRecognizer() override;

    std::vector<TextObservation> perform(const TextRecognitionRequest& request, const Image& image,
                                         std::stop_token stop) override;
    void prepare() override;
    void releaseResources() override;

private:
    struct Models;

    // Loads them when there are none. Call while holding inUse_.
    const Models& models();

    RecognitionFiles files_;
    std::shared_mutex inUse_;  // passes hold it shared; releasing waits for them
    std::mutex loading_;
    std::unique_ptr<Models> models_;
};

}  // namespace ovrin
