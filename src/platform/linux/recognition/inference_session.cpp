#include "platform/linux/recognition/inference_session.h"

#include <string>

#include <onnxruntime_cxx_api.h>

#include "base/error.h"

namespace ovrin {
namespace {

// The runtime's messages name source files and run over several lines; the first line holds the cause.
std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

Ort::SessionOptions sessionOptions(int threads) {
    Ort::SessionOptions options;
    options.SetIntraOpNumThreads(threads);
    options.AddConfigEntry("session.intra_op.allow_spinning", "0");
    options.SetGraphOptimizationLevel(ORT_ENABLE_ALL);
    // Every picture has other dimensions: a memory pattern is planned anew for each and never used again.
    options.DisableMemPattern();
    options.AddConfigEntry("session.set_denormal_as_zero", "1");
    return options;
}

}  // namespace

Tensor Tensor::ofPicture(const cv::Mat& picture, const cv::Scalar& mean, const cv::Scalar& deviation) {
    Tensor tensor{{1, 3, picture.rows, picture.cols}, std::vector<float>(3 * picture.total())};
    std::vector<cv::Mat> planes;
    for (std::size_t i = 0; i < 3; ++i)
        planes.emplace_back(picture.rows, picture.cols, CV_32F, tensor.values.data() + i * picture.total());
    cv::Mat levels;
    picture.convertTo(levels, CV_32F);
    cv::split(levels, planes);
    for (int i = 0; i < 3; ++i) {
        cv::Mat& plane = planes[static_cast<std::size_t>(i)];
        plane.convertTo(plane, CV_32F, 1 / deviation[i], -mean[i] / deviation[i]);
    }
    return tensor;
}

struct InferenceSession::Runtime {
    Runtime(const std::filesystem::path& modelFile, int threads)
        : environment(ORT_LOGGING_LEVEL_FATAL, "ovrin"),
          session(environment, modelFile.c_str(), sessionOptions(threads)),
          inputName(session.GetInputNameAllocated(0, allocator).get()),
          outputName(session.GetOutputNameAllocated(0, allocator).get()) {
        environment.DisableTelemetryEvents();
    }

    Ort::Env environment;
    Ort::Session session;
    Ort::AllocatorWithDefaultOptions allocator;
    std::string inputName;
    std::string outputName;
};

InferenceSession::InferenceSession(const std::filesystem::path& modelFile, int threads) : file_(modelFile) {
    std::error_code status;
    if (!std::filesystem::is_regular_file(modelFile, status))
        throw Error("缺少文字识别模型文件 " + modelFile.string() + "。");
    try {
        runtime_ = std::make_unique<Runtime>(modelFile, threads);
    } catch (const Ort::Exception&) {
        throw Error("无法载入文字识别模型文件 " + modelFile.string() + "：文件已损坏，或者不是模型。");
    }
}

InferenceSession::~InferenceSession() = default;

std::string InferenceSession::metadata(const std::string& key) const {
    const auto value =
        runtime_->session.GetModelMetadata().LookupCustomMetadataMapAllocated(key.c_str(), runtime_->allocator);
    return value ? value.get() : "";
}

void InferenceSession::run(const Tensor& input, const std::stop_token& stop, const OutputReader& read) const {
    if (stop.stop_requested()) throw CancellationError();
    Ort::RunOptions options;
    const std::stop_callback terminate(stop, [&options] { options.SetTerminate(); });
    const auto memory = Ort::MemoryInfo::CreateCpu(OrtArenaAllocator, OrtMemTypeDefault);
    // The runtime only reads the input, but its API has one tensor type for both directions.
    const auto tensor = Ort::Value::CreateTensor<float>(memory, const_cast<float*>(input.values.data()),
                                                        input.values.size(), input.shape.data(), input.shape.size());
    const char* inputName = runtime_->inputName.c_str();
    const char* outputName = runtime_->outputName.c_str();
    std::vector<Ort::Value> outputs;
    try {
        outputs = runtime_->session.Run(options, &inputName, &tensor, 1, &outputName, 1);
    } catch (const Ort::Exception& failure) {
        if (stop.stop_requested()) throw CancellationError();
        throw Error("文字识别模型 " + file_.string() + " 运行失败：" + firstLine(failure.what()));
    }
    const auto information = outputs.front().GetTensorTypeAndShapeInfo();
    const auto shape = information.GetShape();
    read(shape, {outputs.front().GetTensorData<float>(), information.GetElementCount()});
}

}  // namespace ovrin
