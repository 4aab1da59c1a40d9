// The one family of failures that reaches the user, and the one that never does.
//
// An Error is made where its cause is known and carries the sentence that the user reads; callers on the way add
// nothing to it. CancellationError ends work that nobody waits for any more and is never shown.
#pragma once

#include <exception>
#include <string>
#include <utility>

namespace ovrin {

class Error : public std::exception {
public:
    explicit Error(std::string description) : description_(std::move(description)) {}

    // UTF-8, shown to the user unchanged.
    const std::string& errorDescription() const noexcept { return description_; }
    const char* what() const noexcept override { return description_.c_str(); }

private:
    std::string description_;
};

class CancellationError : public std::exception {
public:
    const char* what() const noexcept override { return "cancelled"; }
};

// The description of whatever exception is given: an Error's own, else its what(), else a general sentence.
std::string errorDescription(const std::exception_ptr& error);

}  // namespace ovrin
