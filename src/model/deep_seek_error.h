// The one error type of the model layer: which thing went wrong, and the Chinese sentence that the user reads for it.
//
// A value: equal when the case and everything it carries are equal. Copied and thrown across threads freely.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/error.h"

namespace ovrin {

class DeepSeekError : public Error {
public:
    enum class Case {
        invalidHeader,
        apiError,
        httpStatus,
        transport,
        decoding,
        missingAPIKey,
        missingModel,
        invalidConnectionURL,
        invalidMaxOutputTokens,
        invalidResponse,
        emptyResponse,
    };

    // What a case carries; fields that a case does not use stay empty.
    struct Payload {
        std::string text{};                 // header name, message or description
        std::optional<std::string> type{};  // of an apiError; carried, not shown
        std::optional<std::string> code{};  // of an apiError
        std::int64_t status = 0;            // of an httpStatus
        std::optional<std::string> body{};  // of an httpStatus: the raw body, absent when it is not UTF-8

        bool operator==(const Payload&) const = default;
    };

    static DeepSeekError invalidHeader(std::string name);
    static DeepSeekError apiError(std::string message, std::optional<std::string> type = {},
                                  std::optional<std::string> code = {});
    static DeepSeekError httpStatus(std::int64_t status, std::optional<std::string> body = {});
    static DeepSeekError transport(std::string description);
    static DeepSeekError decoding(std::string description);
    static DeepSeekError missingAPIKey();
    static DeepSeekError missingModel();
    static DeepSeekError invalidConnectionURL();
    static DeepSeekError invalidMaxOutputTokens();
    static DeepSeekError invalidResponse();
    static DeepSeekError emptyResponse();

    Case errorCase() const { return case_; }
    const Payload& payload() const { return payload_; }

    bool operator==(const DeepSeekError& other) const { return case_ == other.case_ && payload_ == other.payload_; }

private:
    explicit DeepSeekError(Case errorCase, Payload payload);

    Case case_;
    Payload payload_;
};

}  // namespace ovrin
