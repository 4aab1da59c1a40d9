// What the tests of this folder share: objects that count themselves, and a place where threads wait for each other.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ovrin {

// A value of a coroutine or closure whose lifetime is observed: counts the living and can speak when it dies.
class Probe {
public:
    Probe() { ++living; }
    explicit Probe(std::function<void()> onDeath) : onDeath_(std::move(onDeath)) { ++living; }
    Probe(Probe&& other) noexcept : onDeath_(std::exchange(other.onDeath_, {})) { ++living; }
    Probe(const Probe& other) : onDeath_(other.onDeath_) { ++living; }
    Probe& operator=(const Probe&) = delete;
    Probe& operator=(Probe&&) = delete;
    ~Probe() {
        --living;
        if (onDeath_) onDeath_();
    }

    static inline std::atomic<int> living = 0;

private:
    std::function<void()> onDeath_;
};

using Log = std::shared_ptr<std::vector<std::string>>;

inline Log makeLog() {
    return std::make_shared<std::vector<std::string>>();
}

}  // namespace ovrin
