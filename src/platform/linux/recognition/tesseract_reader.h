// Reads one piece of a line with Tesseract, for scripts that the network doesn't know.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/linux/recognition/line_piece.h"
#include "platform/linux/recognition/reading.h"

namespace tesseract {
class TessBaseAPI;
}

namespace ovrin {

class TesseractReader {
public:
    explicit TesseractReader(std::filesystem::path dataFolder);
    ~TesseractReader();
    TesseractReader(const TesseractReader&) = delete;
    TesseractReader& operator=(const TesseractReader&) = delete;

    // Whether the data of the language (Tesseract's name, e.g. "jpn") is there.
    bool hasLanguage(const std::string& language) const;

    // Any thread, several at once: each gets an engine of its own. Nothing read when the language's data is damaged.
    Reading read(const LinePiece& piece, const std::string& language);

private:
    using Engine = std::unique_ptr<tesseract::TessBaseAPI>;

    Engine takeEngine(const std::string& language);
    void giveBack(const std::string& language, Engine engine);

    std::filesystem::path dataFolder_;
    std::mutex mutex_;
    std::map<std::string, std::vector<Engine>> idle_;
};

}  // namespace ovrin
