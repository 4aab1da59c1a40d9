#include "platform/linux/onnx_text_recognizer.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <string_view>
#include <utility>

#include <malloc.h>
#include <opencv2/core.hpp>

#include "base/error.h"
#include "platform/linux/recognition/control_marks.h"
#include "platform/linux/recognition/glyph_places.h"
#include "platform/linux/recognition/letter_choice.h"
#include "platform/linux/recognition/library_pages.h"
#include "platform/linux/recognition/line_piece.h"
#include "platform/linux/recognition/parallel.h"
#include "platform/linux/recognition/line_recognizer.h"
#include "platform/linux/recognition/piece_reader.h"
#include "platform/linux/recognition/tesseract_reader.h"
#include "platform/linux/recognition/reading_order.h"
#include "platform/linux/recognition/text_detector.h"
#include "platform/linux/recognition/word_spaces.h"

namespace ovrin {
namespace {

constexpr const char* detectionModel = "PP-OCRv6_det_tiny.onnx";
constexpr const char* recognitionModel = "PP-OCRv6_rec_small.onnx";

// What is read with less confidence is the texture of a picture, not text; a character or two needs more.
bool isText(const Reading& reading) {
    const double confidence = meanConfidence(reading);
    return !reading.empty() && confidence >= (reading.size() <= 2 ? 0.65 : 0.5);
}

static void dumpClusters(Reading reading, const LinePiece& piece) {
    placeOnInk(reading, piece);
    std::vector<ColumnRun> words;
    for (const auto& run : piece.runs) {
        if (words.empty() || run.left - words.back().right > 0.22 * piece.em) words.push_back(run);
        else words.back().right = run.right;
    }
    const auto rows = [&](ColumnRun c) {
        int top = piece.ink.rows, bottom = 0;
        for (int y = 0; y < piece.ink.rows; ++y)
            for (int x = c.left; x < c.right; ++x) if (piece.ink.at<std::uint8_t>(y, x) >= 96) { top = std::min(top, y); bottom = std::max(bottom, y + 1); }
        return std::pair(top, bottom);
    };
    for (std::size_t w = 0; w < words.size(); ++w) {
        Reading part;
        for (auto& c : reading) { const double m = (c.left + c.right) / 2; if (m >= words[w].left && m < words[w].right) { part.push_back(c); part.back().spaceBefore = 0; } }
        if (part.size() > 2 || (part.empty() && words.size() > 1 && false)) continue;
        const auto [t, b] = rows(words[w]);
        int rt = 999, rb = 0;
        for (std::size_t v = 0; v < words.size(); ++v) if (v != w) { const auto [a, c] = rows(words[v]); rt = std::min(rt, a); rb = std::max(rb, c); }
        std::string confs; for (auto& c : part) confs += std::to_string(c.confidence).substr(0, 4) + "/" + std::to_string(c.secondConfidence).substr(0, 4) + " ";
        std::printf("CL %s| %s| word %zu/%zu width %d rows %d-%d rest %d-%d box %dx%d em %.0f gapL %.2f gapR %.2f flat %d :: %s\n", textOf(part).c_str(), confs.c_str(), w, words.size(), words[w].width(), t, b, rt, rb, piece.box.width, piece.box.height, piece.em,
            w ? (words[w].left - words[w-1].right) / piece.em : -1.0, w + 1 < words.size() ? (words[w+1].left - words[w].right) / piece.em : -1.0, piece.flatBackground, textOf(reading).c_str());
    }
}

Rect unitBox(const cv::Rect& box, const Image& image) {
    const double width = image.width();
    const double height = image.height();
    return {
        .x = box.x / width, .y = 1 - box.br().y / height, .width = box.width / width, .height = box.height / height};
}

std::vector<TextObservation> observations(const std::vector<LinePiece>& pieces, const std::vector<Reading>& readings,
                                          const Image& image) {
    std::vector<cv::Rect> boxes;
    boxes.reserve(pieces.size());
    for (const auto& piece : pieces) boxes.push_back(piece.box);
    std::vector<TextObservation> lines;
    for (const auto& row : readingOrder(boxes)) {
        std::string text;
        double confidence = 0;
        double characters = 0;
        cv::Rect box;
        for (const std::size_t index : row) {
            const Reading& reading = readings[index];
            if (!text.empty()) text += ' ';
            text += textOf(reading);
            confidence += meanConfidence(reading) * static_cast<double>(reading.size());
            characters += static_cast<double>(reading.size());
            box = box.empty() ? boxes[index] : box | boxes[index];
        }
        lines.push_back({.candidates = {{.string = text, .confidence = static_cast<float>(confidence / characters)}},
                         .boundingBox = unitBox(box, image)});
    }
    return lines;
}

}  // namespace

RecognitionFiles RecognitionFiles::ofThisProgram() {
    const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    const auto built = folder / "share/ovrin/models";
    const char* prefix = std::getenv("TESSDATA_PREFIX");
    return {.modelFolder = std::filesystem::exists(built) ? built : folder.parent_path() / "share/ovrin/models",
            .tesseractFolder = prefix != nullptr ? prefix : OVRIN_TESSDATA_FOLDER};
}

// The loaded models. Running passes hold the lock shared; releasing waits for them.
class OnnxTextRecognizer::Resources {
public:
    struct Models {
        std::unique_ptr<TextDetector> detector;
        std::unique_ptr<LineRecognizer> lineRecognizer;
        std::vector<std::unique_ptr<SecondReader>> secondReaders;
    };

    explicit Resources(RecognitionFiles files) : files_(std::move(files)) {}

    std::shared_lock<std::shared_mutex> use() { return std::shared_lock(inUse_); }

    // Call while holding use().
    const Models& models() {
        const std::lock_guard lock(loading_);
        if (!models_) models_ = load();
        return *models_;
    }

    void release() {
        const std::unique_lock lock(inUse_);
        models_.reset();
        malloc_trim(0);  // the C library would keep the memory for itself
        constexpr auto libraries = std::to_array<std::string_view>(
            {"libonnxruntime.so", "libopencv_core.so", "libopencv_imgproc.so", "libtesseract.so", "liblept.so"});
        giveBackPagesOfLibraries(libraries);
    }

private:
    Models load() const {
        Models models;
        parallelFor(2, 2, [&](std::size_t index) {
            if (index == 0) {
                models.lineRecognizer = std::make_unique<LineRecognizer>(files_.modelFolder / recognitionModel);
            } else {
                models.detector = std::make_unique<TextDetector>(files_.modelFolder / detectionModel);
            }
        });
        models.secondReaders = TesseractReader::readersFor({"ko"}, true, files_.tesseractFolder);
        return models;
    }

    RecognitionFiles files_;
    std::shared_mutex inUse_;
    std::mutex loading_;
    std::optional<Models> models_;
};

OnnxTextRecognizer::OnnxTextRecognizer(RecognitionFiles files)
    : resources_(std::make_unique<Resources>(std::move(files))) {
    // Builds of ONNX Runtime exist that keep a record of their use in the user's cache folder and send it home. Its own
    // switch in the environment turns that off only when it is set before the library makes its first environment.
    constexpr const char* noTelemetry = "ORT_DISABLE_TELEMETRY";
    if (std::getenv(noTelemetry) == nullptr) ::setenv(noTelemetry, "1", 1);
    // From pass to pass the C library keeps the memory, which would otherwise have to be found page by page again;
    // release() gives it back. The second figure is the largest that the library takes.
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
}

OnnxTextRecognizer::~OnnxTextRecognizer() = default;

std::vector<TextObservation> OnnxTextRecognizer::perform(const TextRecognitionRequest& /*request*/, const Image& image,
                                                         std::stop_token stop) {
    if (stop.stop_requested()) throw CancellationError();
    if (image.isEmpty()) return {};
    const auto lock = resources_->use();
    const auto& models = resources_->models();
    // OpenCV's pictures are mutable; nothing here writes into this one.
    const cv::Mat picture(image.height(), image.width(), CV_8UC4, const_cast<std::uint8_t*>(image.data()));

    const auto regions = models.detector->detect(picture, stop);
    std::vector<LinePiece> pieces(regions.size());
    parallelFor(regions.size(), recognitionThreads(),
                [&](std::size_t index) { pieces[index] = cutLinePiece(picture, regions[index].box); });
    std::erase_if(pieces, [](const LinePiece& piece) { return piece.runs.empty(); });

    std::vector<Reading> readings(pieces.size());
    parallelFor(pieces.size(), recognitionThreads(),
                [&](std::size_t index) { readings[index] = models.lineRecognizer->read(pieces[index].color, stop); });
    if (std::getenv("OVRIN_DUMP")) {
        for (std::size_t i = 0; i < pieces.size(); ++i) dumpClusters(readings[i], pieces[i]);
    }
    readOtherScripts(readings, pieces, *models.lineRecognizer, models.secondReaders, stop);

    std::vector<LinePiece> textPieces;
    std::vector<Reading> textReadings;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        placeOnInk(readings[i], pieces[i]);
        removeControlMarks(readings[i], pieces[i]);
        if (!isText(readings[i])) continue;
        chooseByNeighbours(readings[i]);
        textReadings.push_back(readings[i]);
        restoreRepeatedMarks(textReadings.back(), pieces[i]);
        if (pieces[i].flatBackground) widenMarksByGaps(textReadings.back(), pieces[i].em);
        textPieces.push_back(std::move(pieces[i]));
    }
    placeSpaces(textReadings, textPieces);
    return observations(textPieces, textReadings, image);
}

void OnnxTextRecognizer::prepare() {
    const auto lock = resources_->use();
    try {
        resources_->models();
    } catch (const Error&) {
        // The next perform() meets the same failure and reports it to somebody who asked for something.
        return;
    }
}

void OnnxTextRecognizer::releaseResources() {
    resources_->release();
}

}  // namespace ovrin
