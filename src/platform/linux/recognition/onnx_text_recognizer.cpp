#include "platform/linux/recognition/onnx_text_recognizer.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <future>
#include <limits>
#include <string_view>
#include <utility>

#include <malloc.h>
#include <opencv2/core.hpp>
#ifdef __x86_64__
#include <cpuid.h>
#endif

#include "base/error.h"
#include "base/memory.h"
#include "base/text.h"
#include "platform/linux/desktop/library_pages.h"
#include "platform/linux/recognition/page_reader.h"
#include "platform/linux/recognition/tesseract_reader.h"
#include "platform/reading_order.h"

namespace ovrin {
namespace {

constexpr const char* detectionModel = "PP-OCRv6_det_tiny.onnx";

// Languages are asked for by name; those besides the program's own also where the language is to be found out.
bool isWanted(const TesseractReader& reader, const TextRecognitionRequest& request) {
    const auto& tags = request.recognitionLanguages;
    return std::ranges::any_of(tags, [&](const std::string& tag) { return tag.starts_with(reader.tag()); }) ||
           (request.automaticallyDetectsLanguage && reader.tag() != "ko");
}

// Lines on their side come after the upright ones.
std::vector<TextObservation> observations(const std::vector<LinePiece>& page, const Image& image) {
    const double width = image.width();
    const double height = image.height();
    std::vector<TextObservation> lines;
    for (const Turn turn : {Turn::none, Turn::half, Turn::counterclockwise, Turn::clockwise}) {
        std::vector<const LinePiece*> pieces;
        std::vector<PixelRect> boxes;
        for (const LinePiece& piece : page) {
            if (piece.turn != turn) continue;
            pieces.push_back(&piece);
            const cv::Rect box = turned(piece.box, turn, {image.width(), image.height()});
            boxes.push_back({box.x, box.y, box.width, box.height});
        }
        for (const auto& row : readingOrder(boxes)) {
            Reading line;
            cv::Rect box;
            for (const std::size_t index : row) {
                const std::size_t start = line.size();
                line.insert(line.end(), pieces[index]->reading.begin(), pieces[index]->reading.end());
                line[start].spaceBefore = 1;
                box |= pieces[index]->box;
            }
            lines.push_back({.candidates = {{.string = text::inReadingOrder(textOf(line)),
                                             .confidence = static_cast<float>(meanConfidence(line))}},
                             .boundingBox = {.x = box.x / width,
                                             .y = 1 - box.br().y / height,
                                             .width = box.width / width,
                                             .height = box.height / height}});
        }
    }
    return lines;
}

#ifdef __x86_64__
// The processor itself is asked, because clang-tidy 14 does not know this extension by its name. That the system keeps
// the registers is part of "avx".
bool hasAvxVnni() {
    constexpr unsigned leaf = 7;
    constexpr unsigned subleaf = 1;
    unsigned eax = 0;
    unsigned ebx = 0;
    unsigned ecx = 0;
    unsigned edx = 0;
    return __builtin_cpu_supports("avx") && __get_cpuid_count(leaf, subleaf, &eax, &ebx, &ecx, &edx) != 0 &&
           (eax & bit_AVXVNNI) != 0;
}
#endif

}  // namespace

std::string RecognitionFiles::recognitionModelOfThisProcessor() {
#ifdef __x86_64__
    if (__builtin_cpu_supports("avx512vnni") || hasAvxVnni()) return "PP-OCRv6_rec_small_int8.onnx";
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

struct OnnxTextRecognizer::Models {
    explicit Models(const RecognitionFiles& files)
        : lineRecognizer(std::async(std::launch::async,
                                    [file = files.modelFolder / files.recognitionModel] {
                                        auto network = std::make_unique<LineRecognizer>(file);
                                        giveBackUnusedMemory();  // the file's contents, which the network has copied
                                        return network;
                                    })
                             .share()),
          detector(files.modelFolder / detectionModel),
          secondReaders(TesseractReader::installed(files.tesseractFolder)) {}

    std::shared_future<std::unique_ptr<LineRecognizer>> lineRecognizer;  // the larger network loads meanwhile
    TextDetector detector;
    std::vector<std::unique_ptr<TesseractReader>> secondReaders;
};

void OnnxTextRecognizer::forbidTelemetry() {
    // Builds of ONNX Runtime keep a record of their use in the user's cache folder and send it home. Their own switch
    // in the environment is read when the library makes its first environment.
    constexpr const char* noTelemetry = "ORT_DISABLE_TELEMETRY";
    const char* value = std::getenv(noTelemetry);
    if (value == nullptr || std::string_view(value) != "1") ::setenv(noTelemetry, "1", 1);
}

OnnxTextRecognizer::OnnxTextRecognizer(RecognitionFiles files) : files_(std::move(files)) {
    forbidTelemetry();
    // From pass to pass the C library keeps the memory, which would otherwise have to be found page by page again;
    // releaseResources() gives it back. The second figure is the largest that the library takes.
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
}

OnnxTextRecognizer::~OnnxTextRecognizer() = default;

const OnnxTextRecognizer::Models& OnnxTextRecognizer::models() {
    const std::lock_guard lock(loading_);
    if (!models_) models_ = std::make_unique<Models>(files_);
    return *models_;
}

std::vector<TextObservation> OnnxTextRecognizer::perform(const TextRecognitionRequest& request, const Image& image,
                                                         std::stop_token stop) {
    if (stop.stop_requested()) throw CancellationError();
    if (image.isEmpty()) return {};
    const std::shared_lock lock(inUse_);
    const Models& loaded = models();
    // OpenCV's pictures are mutable; nothing here writes into this one.
    const cv::Mat picture(image.height(), image.width(), CV_8UC4, const_cast<std::uint8_t*>(image.data()));
    std::vector<SecondReader*> secondReaders;
    for (const auto& reader : loaded.secondReaders) {
        if (isWanted(*reader, request)) secondReaders.push_back(reader.get());
    }
    return observations(readPage(picture, {loaded.detector, loaded.lineRecognizer, secondReaders}, stop), image);
}

void OnnxTextRecognizer::prepare() {
    const std::shared_lock lock(inUse_);
    try {
        models().lineRecognizer.get();
    } catch (const Error&) {
        // The next perform() meets the same failure and reports it to somebody who asked for something.
    }
}

void OnnxTextRecognizer::releaseResources() {
    const std::unique_lock lock(inUse_);
    models_.reset();
    giveBackUnusedMemory();
    constexpr auto libraries = std::to_array<std::string_view>(
        {"libonnxruntime.so", "libopencv_core.so", "libopencv_imgproc.so", "libtesseract.so", "liblept.so"});
    giveBackPagesOfLibraries(libraries);
}

}  // namespace ovrin
