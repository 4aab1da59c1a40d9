// Runs independent pieces of one recognition pass on the processor's cores.
#pragma once

#include <cstddef>

#include <opencv2/core/utility.hpp>

namespace ovrin {

// Calls work(index) once for every index below count, on OpenCV's threads and the calling one. Returns when all have
// ended; one of their exceptions is thrown to the caller.
template <typename Work>
void parallelFor(std::size_t count, const Work& work) {
    if (count == 1) return work(0);  // which may then share its own work out
    const auto runRange = [&work](const cv::Range& range) {
        for (int index = range.start; index < range.end; ++index) work(static_cast<std::size_t>(index));
    };
    cv::parallel_for_({0, static_cast<int>(count)}, runRange, static_cast<double>(count));
}

}  // namespace ovrin
