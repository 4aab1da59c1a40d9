// One neural network loaded into ONNX Runtime: floats in, floats out.
//
// Each run uses only the thread that calls it; several threads may run the same session at once. That is faster here
// than the runtime's own thread pool, whose threads wait for each other at every layer and spin in between.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace ovrin {

// Row-major floats with their dimensions.
struct Tensor {
    std::vector<std::int64_t> shape;
    std::vector<float> values;
};

class InferenceSession {
public:
    // Takes the output where the runtime left it: both are valid only during the call.
    using OutputReader = std::function<void(std::span<const std::int64_t> shape, std::span<const float> values)>;

    // Loads the model. Throws Error that names the file and the cause.
    explicit InferenceSession(const std::filesystem::path& modelFile);
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
