// Reads a part of a line with Tesseract in one language.
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

#include "base/script.h"
#include "platform/linux/recognition/second_reader.h"

namespace tesseract {
class TessBaseAPI;
}

namespace ovrin {

class TesseractReader : public SecondReader {
public:
    struct Language {
        const char* tag;   // BCP-47
        const char* name;  // Tesseract's
        Script script;
    };

    // A reader for each language whose script the network does not know and whose data is in the folder.
    static std::vector<std::unique_ptr<TesseractReader>> installed(const std::filesystem::path& dataFolder);

    TesseractReader(std::filesystem::path dataFolder, const Language& language);
    ~TesseractReader() override;

    std::string_view tag() const { return language_.tag; }
    bool isOwn(char32_t character) const override { return scriptOf(character) == language_.script; }
    Reading read(const LinePiece& piece, const ColumnRun& columns, const std::stop_token& stop) override;

private:
    using Engine = std::unique_ptr<tesseract::TessBaseAPI>;

    Engine takeEngine();

    std::filesystem::path dataFolder_;
    Language language_;
    std::mutex mutex_;
    std::vector<Engine> idle_;
};

}  // namespace ovrin
