// The one way the program reads and writes JSON. Reading asks for what it needs and gets nothing for anything else:
// no getter throws because of what a document holds. Any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

#include "base/error.h"

namespace ovrin::json {

using Value = nlohmann::json;

// A document nested deeper than this is refused, so that nothing walking it runs out of stack.
inline constexpr int maximumDepth = 512;

// A text that is no JSON document. Its description says where, never what stands there: the text may hold secrets.
class ParseError : public Error {
public:
    using Error::Error;
};

// The document in UTF-8 (a byte order mark is skipped; of equal names in an object the last counts).
std::optional<Value> parse(std::string_view document);
Value parseOrThrow(std::string_view document);  // throws ParseError

enum class Layout { compact, indented };

// UTF-8; characters beyond ASCII are written as they are, ill-formed bytes as U+FFFD.
std::string encoded(const Value& value, Layout layout = Layout::compact);

// Appends the text as a JSON string, as encoded() writes it: for documents that are too long to build as a tree first.
void appendString(std::string& document, std::string_view text);

// The member of an object; null when the value is no object or has no such member. Lives as long as the value.
const Value* member(const Value& value, std::string_view name);

// A member of an object as the type asked for; none when it is missing, null or of another type. A whole number
// written with a fraction or an exponent (4096.0) is an integer too.
std::optional<std::string> string(const Value& value, std::string_view name);
std::optional<std::int64_t> integer(const Value& value, std::string_view name);
std::optional<double> number(const Value& value, std::string_view name);
std::optional<bool> boolean(const Value& value, std::string_view name);

}  // namespace ovrin::json
