// Published<T>: an observable field. Subscribers hear of a change before it takes effect (willChange) and after it
// (didChange). Setting an equal value tells nobody. Belongs to one thread.
#pragma once

#include <algorithm>
#include <concepts>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace ovrin {

// Lives exactly as long as its owner wants to hear of changes. May outlive the field.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::shared_ptr<void> token) : token_(std::move(token)) {}

private:
    std::shared_ptr<void> token_;
};

template <typename T>
class Published {
public:
    using Handler = std::function<void(const T&)>;

    Published() = default;
    explicit Published(T value) : value_(std::move(value)) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    const T& value() const { return value_; }
    const T* operator->() const { return &value_; }

    void set(T value) {
        if constexpr (std::equality_comparable<T>) {
            if (value == value_) return;
        }
        notify(willChange_, value);
        value_ = std::move(value);
        notify(didChange_, value_);
    }

    // Called with the value that is about to be taken on; value() is still the old one.
    Subscription onWillChange(Handler handler) const { return add(willChange_, std::move(handler)); }

    // Called with the new value.
    Subscription onDidChange(Handler handler) const { return add(didChange_, std::move(handler)); }

private:
    using Handlers = std::vector<std::weak_ptr<Handler>>;

    static Subscription add(Handlers& handlers, Handler handler) {
        auto kept = std::make_shared<Handler>(std::move(handler));
        std::erase_if(handlers, [](const auto& known) { return known.expired(); });
        handlers.push_back(kept);
        return Subscription(std::move(kept));
    }

    // Handlers may subscribe, unsubscribe, set the field and destroy subscriptions (their own too) meanwhile.
    static void notify(const Handlers& handlers, const T& value) {
        const Handlers known = handlers;
        for (const auto& weak : known) {
            if (const auto handler = weak.lock()) (*handler)(value);
        }
    }

    T value_{};
    mutable Handlers willChange_;
    mutable Handlers didChange_;
};

}  // namespace ovrin
