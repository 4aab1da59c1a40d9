// The text recogniser: PP-OCR networks in ONNX Runtime find and read lines of Chinese and English, Tesseract reads the
// scripts that they can't.
#pragma once

#include <filesystem>
#include <memory>

#include "platform/text_recognizer.h"

namespace ovrin {

// Where the recogniser's files lie.
struct RecognitionFiles {
    std::filesystem::path modelFolder;      // the networks and the character list
    std::filesystem::path tesseractFolder;  // *.traineddata

    // Those that came with this program: share/ovrin/models beside the executable (where it was built) or one folder
    // up (where it is installed), and Tesseract's data where TESSDATA_PREFIX says or the distribution keeps it.
    static RecognitionFiles ofThisProgram();
};

class OnnxTextRecognizer : public TextRecognizer {
public:
    // Loads nothing yet. Changes the process environment, to keep the inference runtime from reporting on the user:
    // made before other threads read that.
    explicit OnnxTextRecognizer(RecognitionFiles files);
    ~OnnxTextRecognizer() override;

    std::vector<TextObservation> perform(const TextRecognitionRequest& request, const Image& image,
                                         std::stop_token stop) override;
    void prepare() override;
    void releaseResources() override;

private:
    class Resources;
    std::unique_ptr<Resources> resources_;
};

}  // namespace ovrin
