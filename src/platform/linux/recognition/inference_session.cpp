#include "platform/linux/recognition/inference_session.h"

#include <cstdint>
#include <utility>

#include <onnxruntime_cxx_api.h>

#include "base/error.h"

namespace ovrin {
namespace {

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

InferenceSession::InferenceSession(const std::filesystem::path& modelFile, int threads) : file_(modelFile) {
    std::error_code status;
    if (!std::filesystem::is_regular_file(modelFile, status))
        throw Error("缺少文字识别模型文件 " + modelFile.string() + "。");
    try {
        environment_ = std::make_unique<Ort::Env>(ORT_LOGGING_LEVEL_FATAL, "ovrin");
        environment_->DisableTelemetryEvents();
        session_ = std::make_unique<Ort::Session>(*environment_, modelFile.c_str(), sessionOptions(threads));
        const auto output = session_->GetOutputTypeInfo(0);
        const auto type = output.GetTensorTypeAndShapeInfo();
        const bool isMatrix = output.GetONNXType() == ONNX_TYPE_TENSOR && type.GetDimensionsCount() >= 2;
        if (session_->GetInputCount() != 1 || !isMatrix || type.GetElementType() != ONNX_TENSOR_ELEMENT_DATA_TYPE_FLOAT)
            throw Ort::Exception("not from one input to a matrix of floats", ORT_INVALID_GRAPH);
    } catch (const Ort::Exception&) {
        throw Error("无法载入文字识别模型文件 " + modelFile.string() + "：文件已损坏，或者不是模型。");
    }
}

InferenceSession::~InferenceSession() = default;

std::string InferenceSession::metadata(const std::string& key) const {
    const Ort::AllocatorWithDefaultOptions allocator;
    const auto value = session_->GetModelMetadata().LookupCustomMetadataMapAllocated(key.c_str(), allocator);
    return value ? value.get() : "";
}

void InferenceSession::run(const cv::Mat& picture, const cv::Scalar& mean, const cv::Scalar& deviation,
                           const std::stop_token& stop, const OutputReader& read) const {
    if (stop.stop_requested()) throw CancellationError();
    // One plane after the other.
    const std::int64_t shape[] = {1, 3, picture.rows, picture.cols};
    cv::Mat levels(3 * picture.rows, picture.cols, CV_32F);
    for (int channel = 0; channel < 3; ++channel) {
        cv::Mat bytes, plane = levels.rowRange(channel * picture.rows, (channel + 1) * picture.rows);
        cv::extractChannel(picture, bytes, channel);
        bytes.convertTo(plane, CV_32F, 1 / deviation[channel], -mean[channel] / deviation[channel]);
    }
    Ort::RunOptions options;
    const std::stop_callback terminate(stop, [&options] { options.SetTerminate(); });
    const auto memory = Ort::MemoryInfo::CreateCpu(OrtArenaAllocator, OrtMemTypeDefault);
    const auto input =
        Ort::Value::CreateTensor<float>(memory, levels.ptr<float>(), levels.total(), shape, std::size(shape));
    const Ort::AllocatorWithDefaultOptions allocator;
    const auto inputName = session_->GetInputNameAllocated(0, allocator);
    const auto outputName = session_->GetOutputNameAllocated(0, allocator);
    const char* const inputs[] = {inputName.get()};
    const char* const outputs[] = {outputName.get()};
    try {
        auto output = std::move(session_->Run(options, inputs, &input, 1, outputs, 1).front());
        const auto sides = output.GetTensorTypeAndShapeInfo().GetShape();
        read({static_cast<int>(sides.at(sides.size() - 2)), static_cast<int>(sides.back()), CV_32F,
              output.GetTensorMutableData<float>()});
    } catch (const cv::Exception&) {
        throw Error("文字识别模型文件 " + file_.string() + " 已损坏：输出的大小不符。");
    } catch (const Ort::Exception& failure) {
        if (stop.stop_requested()) throw CancellationError();
        // The runtime's messages name source files and run over several lines; the first line holds the cause.
        const std::string message = failure.what();
        throw Error("文字识别模型 " + file_.string() + " 运行失败：" + message.substr(0, message.find('\n')));
    }
}

}  // namespace ovrin
