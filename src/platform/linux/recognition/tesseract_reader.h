// Reads a part of a line with Tesseract in one language.
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/linux/recognition/script.h"
#include "platform/linux/recognition/second_reader.h"

namespace tesseract {
class TessBaseAPI;
}

namespace ovrin {

class TesseractReader : public SecondReader {
public:
    // The readers for the languages (BCP-47 tags) whose script the network does not know and whose data is in the
    // folder. With `detectsLanguages` also those that nobody named.
    static std::vector<std::unique_ptr<SecondReader>> readersFor(const std::vector<std::string>& tags,
                                                                 bool detectsLanguages,
                                                                 const std::filesystem::path& dataFolder);

    TesseractReader(std::filesystem::path dataFolder, std::string language, Script script);
    ~TesseractReader() override;
    TesseractReader(const TesseractReader&) = delete;
    TesseractReader& operator=(const TesseractReader&) = delete;

    bool isOwn(char32_t character) const override { return scriptOf(character) == script_; }
    Reading read(const LinePiece& piece, const ColumnRun& columns, const std::stop_token& stop) override;

private:
    using Engine = std::unique_ptr<tesseract::TessBaseAPI>;

    Engine takeEngine();

    std::filesystem::path dataFolder_;
    std::string language_;  // by Tesseract's name
    Script script_;
    std::mutex mutex_;
    std::vector<Engine> idle_;
};

}  // namespace ovrin
