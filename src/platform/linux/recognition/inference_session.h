// One neural network loaded into ONNX Runtime: a picture in, floats out.
// Several threads may run the same session at once.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>

#include <opencv2/core.hpp>

namespace Ort {
struct Env;
struct Session;
}  // namespace Ort

namespace ovrin {

class InferenceSession {
public:
    // Takes the last two dimensions of the output, floats, where the runtime left them: valid only during the call.
    using OutputReader = std::function<void(const cv::Mat& output)>;

    // Loads the model. A run uses so many threads, the calling one among them. Throws Error that names the file and the
    // cause.
    InferenceSession(const std::filesystem::path& modelFile, int threads);
    ~InferenceSession();

    // An entry of what the model says about itself; empty where it says nothing.
    std::string metadata(const std::string& key) const;

    // Runs the network on a picture of three bytes a pixel, which it sees as (level - mean) / deviation, and hands its
    // single output to `read`. A stop request interrupts the run between two layers: CancellationError. Throws Error
    // when the network can't work on this picture.
    void run(const cv::Mat& picture, const cv::Scalar& mean, const cv::Scalar& deviation, const std::stop_token& stop,
             const OutputReader& read) const;

    const std::filesystem::path& file() const { return file_; }

private:
    std::filesystem::path file_;
    std::unique_ptr<Ort::Env> environment_;
    std::unique_ptr<Ort::Session> session_;
};

}  // namespace ovrin
