#include "platform/linux/recognition/onnx_text_recognizer.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <future>
#include <limits>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <string_view>
#include <utility>

#include <malloc.h>
#include <opencv2/core.hpp>

#include "base/error.h"
#include "base/memory.h"
#include "base/text.h"
#include "platform/linux/desktop/library_pages.h"
#include "platform/linux/recognition/page_reader.h"
#include "platform/linux/recognition/reading_order.h"
#include "platform/linux/recognition/tesseract_reader.h"

namespace ovrin {
namespace {

constexpr const char* detectionModel = "PP-OCRv6_det_tiny.onnx";

// Languages are asked for by name; those besides the program's own also where the language is to be found out.
bool isWanted(const TesseractReader& reader, const TextRecognitionRequest& request) {
    const auto& tags = request.recognitionLanguages;
    return std::ranges::any_of(tags, [&](const std::string& tag) { return tag.starts_with(reader.tag()); }) ||
           (request.automaticallyDetectsLanguage && reader.tag() != "ko");
}

UnitRect unitBox(const cv::Rect& box, const Image& image) {
    const double width = image.width();
    const double height = image.height();
    return {
        .x = box.x / width, .y = 1 - box.br().y / height, .width = box.width / width, .height = box.height / height};
}

TextObservation observation(const std::vector<const LinePiece*>& row, const Image& image) {
    std::string text;
    double confidence = 0, characters = 0;
    cv::Rect box;
    for (const LinePiece* piece : row) {
        if (!text.empty()) text += ' ';
        text += textOf(piece->reading);
        const auto size = static_cast<double>(piece->reading.size());
        confidence += meanConfidence(piece->reading) * size;
        characters += size;
        box |= piece->box;
    }
    return {.candidates = {{.string = text::inReadingOrder(text),
                            .confidence = static_cast<float>(confidence / characters)}},
            .boundingBox = unitBox(box, image)};
}

// Lines on their side come after the upright ones.
std::vector<TextObservation> observations(const std::vector<LinePiece>& page, const Image& image) {
    std::vector<TextObservation> lines;
    for (const Turn turn : {Turn::none, Turn::half, Turn::counterclockwise, Turn::clockwise}) {
        std::vector<const LinePiece*> pieces;
        std::vector<cv::Rect> boxes;
        for (const LinePiece& piece : page) {
            if (piece.turn != turn) continue;
            pieces.push_back(&piece);
            boxes.push_back(turned(piece.box, turn, {image.width(), image.height()}));
        }
        for (const auto& row : readingOrder(boxes)) {
            std::vector<const LinePiece*> ordered;
            for (const std::size_t index : row) ordered.push_back(pieces[index]);
            lines.push_back(observation(ordered, image));
        }
    }
    return lines;
}

}  // namespace

std::string RecognitionFiles::recognitionModelOfThisProcessor() {
#ifdef __x86_64__
    if (__builtin_cpu_supports("avx512vnni") || __builtin_cpu_supports("avxvnni"))
        return "PP-OCRv6_rec_small_int8.onnx";
#endif
    return "PP-OCRv6_rec_small.onnx";
}

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
        std::shared_future<std::unique_ptr<LineRecognizer>> lineRecognizer;  // the larger network loads meanwhile
        std::unique_ptr<TextDetector> detector;
        std::vector<std::unique_ptr<TesseractReader>> secondReaders;
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
        giveBackUnusedMemory();  // the C library would keep the memory for itself
        constexpr auto libraries = std::to_array<std::string_view>(
            {"libonnxruntime.so", "libopencv_core.so", "libopencv_imgproc.so", "libtesseract.so", "liblept.so"});
        giveBackPagesOfLibraries(libraries);
    }

private:
    Models load() const {
        Models models;
        const auto loadNetwork = [file = files_.modelFolder / files_.recognitionModel] {
            auto network = std::make_unique<LineRecognizer>(file);
            giveBackUnusedMemory();  // the file's contents, of which the network has made a copy of its own
            return network;
        };
        models.lineRecognizer = std::async(std::launch::async, loadNetwork).share();
        models.detector = std::make_unique<TextDetector>(files_.modelFolder / detectionModel);
        models.secondReaders = TesseractReader::installed(files_.tesseractFolder);
        return models;
    }

    RecognitionFiles files_;
    std::shared_mutex inUse_;
    std::mutex loading_;
    std::optional<Models> models_;
};

void OnnxTextRecognizer::forbidTelemetry() {
    // Builds of ONNX Runtime keep a record of their use in the user's cache folder and send it home. Their own switch
    // in the environment is read when the library makes its first environment.
    constexpr const char* noTelemetry = "ORT_DISABLE_TELEMETRY";
    const char* value = std::getenv(noTelemetry);
    if (value == nullptr || std::string_view(value) != "1") ::setenv(noTelemetry, "1", 1);
}

OnnxTextRecognizer::OnnxTextRecognizer(RecognitionFiles files)
    : resources_(std::make_unique<Resources>(std::move(files))) {
    forbidTelemetry();
    // From pass to pass the C library keeps the memory, which would otherwise have to be found page by page again;
    // release() gives it back. The second figure is the largest that the library takes.
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
}

OnnxTextRecognizer::~OnnxTextRecognizer() = default;

std::vector<TextObservation> OnnxTextRecognizer::perform(const TextRecognitionRequest& request, const Image& image,
                                                         std::stop_token stop) {
    if (stop.stop_requested()) throw CancellationError();
    if (image.isEmpty()) return {};
    const auto lock = resources_->use();
    const auto& models = resources_->models();
    // OpenCV's pictures are mutable; nothing here writes into this one.
    const cv::Mat picture(image.height(), image.width(), CV_8UC4, const_cast<std::uint8_t*>(image.data()));

    std::vector<SecondReader*> secondReaders;
    for (const auto& reader : models.secondReaders) {
        if (isWanted(*reader, request)) secondReaders.push_back(reader.get());
    }
    return observations(readPage(picture, {*models.detector, models.lineRecognizer, secondReaders}, stop), image);
}

void OnnxTextRecognizer::prepare() {
    const auto lock = resources_->use();
    try {
        resources_->models().lineRecognizer.get();
    } catch (const Error&) {
        // The next perform() meets the same failure and reports it to somebody who asked for something.
        return;
    }
}

void OnnxTextRecognizer::releaseResources() {
    resources_->release();
}

}  // namespace ovrin
