#include "platform/linux/recognition/tesseract_reader.h"

#include <algorithm>
#include <cmath>

#include <omp.h>
#include <opencv2/imgproc.hpp>
#include <tesseract/baseapi.h>
#include <tesseract/resultiterator.h>
#include <unicode/unistr.h>

#include "platform/linux/recognition/letter_shapes.h"

namespace ovrin {
namespace {

constexpr int readingHeight = 48;  // of the whole piece, pixels
constexpr int whiteBorder = 12;

// Grey, dark on light, at the size that Tesseract reads best.
cv::Mat preparedPicture(const LinePiece& piece, double scale) {
    cv::Mat source;
    if (piece.flatBackground) {
        source = 255 - piece.ink;
    } else {
        cv::cvtColor(piece.color, source, cv::COLOR_BGR2GRAY);
        cv::Mat mask;
        cv::threshold(source, mask, 0, 255, cv::THRESH_BINARY | cv::THRESH_OTSU);
        if (cv::mean(mask)[0] < 128) source = 255 - source;
        cv::normalize(source, source, 0, 255, cv::NORM_MINMAX);
    }
    cv::Mat scaled;
    cv::resize(source, scaled, {}, scale, scale, scale < 1 ? cv::INTER_AREA : cv::INTER_CUBIC);
    cv::copyMakeBorder(scaled, scaled, whiteBorder, whiteBorder, whiteBorder, whiteBorder, cv::BORDER_CONSTANT,
                       cv::Scalar(255));
    return scaled;
}

}  // namespace

TesseractReader::TesseractReader(std::filesystem::path dataFolder) : dataFolder_(std::move(dataFolder)) {}
TesseractReader::~TesseractReader() {
    idle_.clear();
    tesseract::TessBaseAPI::ClearPersistentCache();  // dictionaries, which it keeps for engines to come
}

bool TesseractReader::hasLanguage(const std::string& language) const {
    std::error_code status;
    return std::filesystem::is_regular_file(dataFolder_ / (language + ".traineddata"), status);
}

TesseractReader::Engine TesseractReader::takeEngine(const std::string& language) {
    {
        const std::lock_guard lock(mutex_);
        auto& engines = idle_[language];
        if (!engines.empty()) {
            Engine engine = std::move(engines.back());
            engines.pop_back();
            return engine;
        }
    }
    auto engine = std::make_unique<tesseract::TessBaseAPI>();
    const std::vector<std::string> names = {"debug_file", "invert_threshold", "user_defined_dpi"};
    const std::vector<std::string> values = {"/dev/null", "0", "300"};
    if (engine->Init(dataFolder_.c_str(), language.c_str(), tesseract::OEM_LSTM_ONLY, nullptr, 0, &names, &values,
                     false) != 0)
        return nullptr;
    engine->SetPageSegMode(tesseract::PSM_SINGLE_LINE);
    return engine;
}

void TesseractReader::giveBack(const std::string& language, Engine engine) {
    engine->Clear();
    const std::lock_guard lock(mutex_);
    idle_[language].push_back(std::move(engine));
}

Reading TesseractReader::read(const LinePiece& piece, const std::string& language) {
    // Its own threads only get into each other's way: lines are read in parallel instead.
    omp_set_max_active_levels(0);
    Engine engine = takeEngine(language);
    if (!engine) return {};
    const double scale = readingHeight / static_cast<double>(piece.ink.rows);
    const cv::Mat picture = preparedPicture(piece, scale);
    engine->SetImage(picture.data, picture.cols, picture.rows, 1, static_cast<int>(picture.step));
    Reading reading;
    if (engine->Recognize(nullptr) == 0) {
        const std::unique_ptr<tesseract::ResultIterator> symbol(engine->GetIterator());
        if (symbol && !symbol->Empty(tesseract::RIL_SYMBOL)) {
            do {
                const std::unique_ptr<const char[]> text(symbol->GetUTF8Text(tesseract::RIL_SYMBOL));
                int left = 0, top = 0, right = 0, bottom = 0;
                if (!text || !symbol->BoundingBox(tesseract::RIL_SYMBOL, &left, &top, &right, &bottom)) continue;
                const auto characters = icu::UnicodeString::fromUTF8(text.get());
                // Only Korean has words; elsewhere they are the engine's own.
                const double space = language == "kor" && symbol->IsAtBeginningOf(tesseract::RIL_WORD) ? 1 : 0;
                for (int i = 0; i < characters.length(); i = characters.moveIndex32(i, 1)) {
                    reading.push_back({.code = static_cast<char32_t>(characters.char32At(i)),
                                       .confidence = symbol->Confidence(tesseract::RIL_SYMBOL) / 100.0F,
                                       .left = (left - whiteBorder) / scale,
                                       .right = (right - whiteBorder) / scale,
                                       .spaceBefore = i == 0 ? space : 0});
                }
            } while (symbol->Next(tesseract::RIL_SYMBOL));
        }
    }
    giveBack(language, std::move(engine));
    if (language != "kor") widenMarks(reading);
    return reading;
}

}  // namespace ovrin
