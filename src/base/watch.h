// How a view follows what it shows: now and on every change.
#pragma once

#include <array>
#include <concepts>
#include <memory>
#include <tuple>
#include <utility>

#include "base/published.h"

namespace ovrin {

// Calls the handler with the value that the field has now, and with every new one while the subscription lives.
template <typename T, std::invocable<const T&> Handler>
Subscription watch(const Published<T>& field, Handler handler) {
    Subscription changes = field.onDidChange(handler);
    handler(field.value());
    return changes;
}

// The same for what depends on several fields, which the handler reads by itself: watch(std::tie(text, error), show).
template <typename... Field, std::invocable Handler>
Subscription watch(const std::tuple<Field&...>& fields, Handler handler) {
    using Subscriptions = std::array<Subscription, sizeof...(Field)>;
    auto changes = std::apply(
        [&](const auto&... field) {
            return std::make_shared<Subscriptions>(
                Subscriptions{field.onDidChange([handler](const auto& /*value*/) { handler(); })...});
        },
        fields);
    handler();
    return Subscription(std::move(changes));
}

}  // namespace ovrin
