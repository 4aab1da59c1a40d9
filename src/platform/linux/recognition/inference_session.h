// One neural network loaded into ONNX Runtime: floats in, floats out.
//
// Each run uses only the thread that calls it; several threads may run the same session at once. That is faster here
// than the runtime's own thread pool, whose threads wait for each other at every layer and spin in between.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stop_token>
#include <vector>

namespace ovrin {

// Row-major floats with their dimensions.
struct Tensor {
    std::vector<std::int64_t> shape;
    std::vector<float> values;
};

class InferenceSession {
public:
    // Loads the model. Throws Error that names the file and the cause.
    explicit InferenceSession(const std::filesystem::path& modelFile);
    ~InferenceSession();
    InferenceSession(const InferenceSession&) = delete;
    InferenceSession& operator=(const InferenceSession&) = delete;

    // Runs the network on its single input and gives its single output. A stop request interrupts the run between two
    // layers: CancellationError. Throws Error when the network can't work on this input.
    Tensor run(const Tensor& input, const std::stop_token& stop) const;

private:
    struct Runtime;
    std::unique_ptr<Runtime> runtime_;
};

}  // namespace ovrin
