#include "platform/linux/recognition/tesseract_reader.h"

#include <algorithm>
#include <utility>

#include <omp.h>
#include <opencv2/imgproc.hpp>
#include <tesseract/baseapi.h>
#include <tesseract/ocrclass.h>
#include <tesseract/resultiterator.h>
#include <unicode/unistr.h>

#include "base/error.h"

namespace ovrin {
namespace {

// Of the ink, in pixels: of the heights from 28 to 48 the one at which Korean lines of screenshots were read best.
constexpr double readingHeight = 32;
constexpr int border = 10;

constexpr TesseractReader::Language languages[] = {{"ko", "kor", Script::hangul}, {"ru", "rus", Script::cyrillic},
                                                   {"el", "ell", Script::greek},  {"th", "tha", Script::thai},
                                                   {"ar", "ara", Script::arabic}, {"hi", "hin", Script::devanagari}};

}  // namespace

std::vector<std::unique_ptr<TesseractReader>> TesseractReader::installed(const std::filesystem::path& dataFolder) {
    std::vector<std::unique_ptr<TesseractReader>> readers;
    for (const auto& language : languages) {
        std::error_code status;
        const auto file = dataFolder / (std::string(language.name) + ".traineddata");
        if (std::filesystem::is_regular_file(file, status))
            readers.push_back(std::make_unique<TesseractReader>(dataFolder, language));
    }
    return readers;
}

TesseractReader::TesseractReader(std::filesystem::path dataFolder, const Language& language)
    : dataFolder_(std::move(dataFolder)), language_(language) {}

TesseractReader::~TesseractReader() {
    idle_.clear();
    tesseract::TessBaseAPI::ClearPersistentCache();  // dictionaries, which it keeps for engines to come
}

TesseractReader::Engine TesseractReader::takeEngine() {
    std::unique_lock lock(mutex_);
    if (!idle_.empty()) {
        Engine engine = std::move(idle_.back());
        idle_.pop_back();
        return engine;
    }
    lock.unlock();
    auto engine = std::make_unique<tesseract::TessBaseAPI>();
    const std::vector<std::string> names = {"debug_file", "invert_threshold", "user_defined_dpi"};
    const std::vector<std::string> values = {"/dev/null", "0", "300"};
    if (engine->Init(dataFolder_.c_str(), language_.name, tesseract::OEM_LSTM_ONLY, nullptr, 0, &names, &values,
                     false) != 0)
        return nullptr;
    engine->SetPageSegMode(tesseract::PSM_SINGLE_LINE);
    return engine;
}

Reading TesseractReader::read(const LinePiece& piece, const ColumnRun& columns, const std::stop_token& stop) {
    // Its own threads only get into each other's way: lines are read in parallel instead.
    omp_set_max_active_levels(0);
    Engine engine = takeEngine();
    if (!engine) return {};
    const double scale = readingHeight / piece.glyphHeight();
    cv::Mat grey = 255 - piece.ink.colRange(columns.left, columns.right);  // dark on light
    cv::resize(grey, grey, {}, scale, scale, scale < 1 ? cv::INTER_AREA : cv::INTER_CUBIC);
    cv::copyMakeBorder(grey, grey, border, border, border, border, cv::BORDER_REPLICATE);
    engine->SetImage(grey.data, grey.cols, grey.rows, 1, static_cast<int>(grey.step));
    tesseract::ETEXT_DESC monitor;
    monitor.cancel_this = const_cast<std::stop_token*>(&stop);
    monitor.cancel = [](void* token, int) { return static_cast<const std::stop_token*>(token)->stop_requested(); };
    const bool isArabic = language_.script == Script::arabic;
    const bool setsWordsApart = language_.script != Script::hangul && language_.script != Script::thai;
    const bool isRead = engine->Recognize(&monitor) == 0;
    const std::unique_ptr<tesseract::ResultIterator> symbol(isRead ? engine->GetIterator() : nullptr);
    Reading reading;
    for (bool more = symbol && !symbol->Empty(tesseract::RIL_SYMBOL); more;
         more = symbol->Next(tesseract::RIL_SYMBOL)) {
        const std::unique_ptr<const char[]> text(symbol->GetUTF8Text(tesseract::RIL_SYMBOL));
        int left = 0, top = 0, right = 0, bottom = 0;
        if (!text || !symbol->BoundingBox(tesseract::RIL_SYMBOL, &left, &top, &right, &bottom)) continue;
        const bool isAtSpace = isArabic ? symbol->IsAtFinalElement(tesseract::RIL_WORD, tesseract::RIL_SYMBOL)
                                        : symbol->IsAtBeginningOf(tesseract::RIL_WORD);
        const auto characters = icu::UnicodeString::fromUTF8(text.get());
        for (int i = 0; i < characters.length(); i = characters.moveIndex32(i, 1)) {
            reading.push_back({.code = static_cast<char32_t>(characters.char32At(i)),
                               .confidence = symbol->Confidence(tesseract::RIL_SYMBOL) / 100.0F,
                               .left = (left - border) / scale + columns.left,
                               .right = (right - border) / scale + columns.left,
                               // Those between syllables are worth nothing.
                               .spaceBefore = isAtSpace && i == 0 && setsWordsApart ? 1.0 : 0.0});
        }
    }
    if (isArabic) std::ranges::sort(reading, {}, &ReadCharacter::center);  // as it is seen, from left to right
    engine->Clear();
    const std::lock_guard lock(mutex_);
    idle_.push_back(std::move(engine));
    if (stop.stop_requested()) throw CancellationError();
    return reading;
}

}  // namespace ovrin
