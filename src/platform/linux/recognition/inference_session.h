// One neural network loaded into ONNX Runtime: floats in, floats out.
// Several threads may run the same session at once.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

namespace ovrin {

// Row-major floats with their dimensions.
struct Tensor {
    std::vector<std::int64_t> shape;
    std::vector<float> values;

    // The picture (three bytes a pixel) as networks take it, one plane after the other: (level - mean) / deviation.
    static Tensor ofPicture(const cv::Mat& picture, const cv::Scalar& mean, const cv::Scalar& deviation);
};

class InferenceSession {
public:
    // Takes the output where the runtime left it: both are valid only during the call.
    using OutputReader = std::function<void(std::span<const std::int64_t> shape, std::span<const float> values)>;

    // Loads the model. A run uses so many threads, the calling one among them. Throws Error that names the file and the
    // cause.
    InferenceSession(const std::filesystem::path& modelFile, int threads);
    ~InferenceSession();
    InferenceSession(const InferenceSession&) = delete;
    InferenceSession& operator=(const InferenceSession&) = delete;

    // An entry of what the model says about itself; empty where it says nothing.
    std::string metadata(const std::string& key) const;

    // Runs the network on its single input and hands its single output to `read`. A stop request interrupts the run
    // between two layers: CancellationError. Throws Error when the network can't work on this input.
    void run(const Tensor& input, const std::stop_token& stop, const OutputReader& read) const;

    const std::filesystem::path& file() const { return file_; }

private:
    struct Runtime;
    std::filesystem::path file_;
    std::unique_ptr<Runtime> runtime_;
};

}  // namespace ovrin
