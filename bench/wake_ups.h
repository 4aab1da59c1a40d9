// How often the threads of another process are woken.
#pragma once

#include <chrono>

#include <sys/types.h>

namespace ovrin {

// Of all its threads together, during the time. Threads that end meanwhile do not count.
long countWakeUps(pid_t process, std::chrono::seconds time);

}  // namespace ovrin
