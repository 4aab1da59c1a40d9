// Published<T>: an observable field. Subscribers hear of a change before it takes effect (willChange) and after it
// (didChange). Setting an equal value tells nobody. Belongs to one thread.
//
// Handlers may subscribe, unsubscribe (themselves too), set the field and destroy its owner. A value set in a
// willChange handler is overwritten by the change under way. A value set in a didChange handler goes round at once;
// handlers that had not heard of the value before it hear of the newest one only. They must not throw.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstdint>
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
    ~Published() { rounds_->isFieldGone = true; }

    const T& value() const { return value_; }
    const T* operator->() const { return &value_; }

    void set(T value) {
        if constexpr (std::equality_comparable<T>) {
            if (value == value_) return;
        }
        const std::shared_ptr<Rounds> rounds = rounds_;  // tells whether a handler has destroyed this field
        notify(willChange_, value, [&rounds] { return rounds->isFieldGone; });
        if (rounds->isFieldGone) return;
        value_ = std::move(value);
        const auto change = ++rounds->changes;
        notify(didChange_, value_, [&rounds, change] { return rounds->isFieldGone || rounds->changes != change; });
    }

    // Called with the value that is about to be taken on; value() is still the old one.
    Subscription onWillChange(Handler handler) const { return add(willChange_, std::move(handler)); }

    // Called with the new value.
    Subscription onDidChange(Handler handler) const { return add(didChange_, std::move(handler)); }

private:
    using Handlers = std::vector<std::weak_ptr<Handler>>;

    // What a round of notifications must know after each handler, even when the field has gone.
    struct Rounds {
        std::uint64_t changes = 0;
        bool isFieldGone = false;
    };

    static Subscription add(Handlers& handlers, Handler handler) {
        auto kept = std::make_shared<Handler>(std::move(handler));
        std::erase_if(handlers, [](const auto& known) { return known.expired(); });
        handlers.push_back(kept);
        return Subscription(std::move(kept));
    }

    template <typename IsOver>
    static void notify(const Handlers& handlers, const T& value, IsOver isOver) {
        const Handlers known(handlers.begin(), handlers.end());  // the handlers may add to the list
        for (const auto& weak : known) {
            if (const auto handler = weak.lock()) (*handler)(value);
            if (isOver()) return;
        }
    }

    T value_{};
    mutable Handlers willChange_;
    mutable Handlers didChange_;
    std::shared_ptr<Rounds> rounds_ = std::make_shared<Rounds>();
};

}  // namespace ovrin
