// Runs independent pieces of one recognition pass on the processor's cores.
#pragma once

#include <cstddef>
#include <functional>

namespace ovrin {

// Calls work(index) once for every index below count, in rising order of start, on up to `threads` threads, the
// calling one among them. Returns when all have ended. The first exception ends the hand-out of further indices and
// is thrown to the caller.
void parallelFor(std::size_t count, std::size_t threads, const std::function<void(std::size_t)>& work);

// How many threads are worth using for one pass.
std::size_t recognitionThreads();

}  // namespace ovrin
