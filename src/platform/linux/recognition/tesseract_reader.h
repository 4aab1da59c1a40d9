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
    // A reader for each language whose script the network does not know and whose data is in the folder.
    static std::vector<std::unique_ptr<TesseractReader>> installed(const std::filesystem::path& dataFolder);

    // tag: BCP-47; language: Tesseract's name of it.
    TesseractReader(std::filesystem::path dataFolder, std::string tag, std::string language, Script script);
    ~TesseractReader() override;
    TesseractReader(const TesseractReader&) = delete;
    TesseractReader& operator=(const TesseractReader&) = delete;

    const std::string& tag() const { return tag_; }
    bool isOwn(char32_t character) const override { return scriptOf(character) == script_; }
    Reading read(const LinePiece& piece, const ColumnRun& columns, const std::stop_token& stop) override;

private:
    using Engine = std::unique_ptr<tesseract::TessBaseAPI>;

    Engine takeEngine();

    std::filesystem::path dataFolder_;
    std::string tag_;
    std::string language_;
    Script script_;
    std::mutex mutex_;
    std::vector<Engine> idle_;
};

}  // namespace ovrin
