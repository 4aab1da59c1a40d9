#include "platform/linux/recognition/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace ovrin {

void parallelFor(std::size_t count, std::size_t threads, const std::function<void(std::size_t)>& work) {
    std::atomic<std::size_t> next = 0;
    std::exception_ptr failure;
    std::mutex failureMutex;
    const auto drain = [&] {
        for (std::size_t index = next++; index < count; index = next++) {
            try {
                work(index);
            } catch (...) {
                const std::lock_guard lock(failureMutex);
                if (!failure) failure = std::current_exception();
                next = count;
            }
        }
    };
    {
        std::vector<std::jthread> helpers;
        for (std::size_t i = 1; i < std::min(count, threads); ++i) helpers.emplace_back(drain);
        drain();
    }
    if (failure) std::rethrow_exception(failure);
}

std::size_t recognitionThreads() {
    return std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, 4);
}

}  // namespace ovrin
