#include "base/json.h"

#include <algorithm>
#include <cmath>

#include <nlohmann/json.hpp>

#include "base/text.h"

namespace ovrin::json {
namespace {

// Brackets outside strings, counted before the document is built. Only a long text can be too deep.
bool isTooDeep(std::string_view document) {
    if (document.size() <= static_cast<std::size_t>(maximumDepth)) return false;
    int depth = 0;
    bool inString = false;
    for (std::size_t index = 0; index < document.size(); ++index) {
        const char character = document[index];
        if (inString) {
            if (character == '\\') ++index;
            if (character == '"') inString = false;
        } else if (character == '"') {
            inString = true;
        } else if (character == '[' || character == '{') {
            if (++depth > maximumDepth) return true;
        } else if (character == ']' || character == '}') {
            --depth;
        }
    }
    return false;
}

std::optional<std::int64_t> wholeNumber(double number) {
    constexpr double limit = 9223372036854775808.0;  // 2 to the 63rd
    if (std::trunc(number) != number || number < -limit || number >= limit) return std::nullopt;
    return static_cast<std::int64_t>(number);
}

}  // namespace

std::optional<Value> parse(std::string_view document) {
    if (isTooDeep(document)) return std::nullopt;
    Value value = Value::parse(document, nullptr, false);
    if (value.is_discarded()) return std::nullopt;
    return value;
}

Value parseOrThrow(std::string_view document) {
    if (isTooDeep(document)) throw ParseError("JSON nested too deeply");
    try {
        return Value::parse(document);
    } catch (const Value::parse_error& error) {
        throw ParseError("not valid JSON at byte " + std::to_string(error.byte));
    } catch (const Value::exception&) {
        throw ParseError("not valid JSON: a number is out of range");
    }
}

std::string encoded(const Value& value, Layout layout) {
    const int indentation = layout == Layout::indented ? 2 : -1;
    return value.dump(indentation, ' ', false, Value::error_handler_t::replace);
}

void appendString(std::string& document, std::string_view text) {
    if (!text::isValidUtf8(text)) {
        document += encoded(text);
        return;
    }
    const auto needsEscape = [](char character) {
        return static_cast<unsigned char>(character) < 0x20 || character == '"' || character == '\\';
    };
    document += '"';
    while (!text.empty()) {
        const auto plain = static_cast<std::size_t>(std::find_if(text.begin(), text.end(), needsEscape) - text.begin());
        document.append(text, 0, plain);
        text.remove_prefix(plain);
        if (text.empty()) break;
        const std::string escaped = encoded(text.substr(0, 1));
        document.append(escaped, 1, escaped.size() - 2);  // without its quotation marks
        text.remove_prefix(1);
    }
    document += '"';
}

const Value* member(const Value& value, std::string_view name) {
    if (!value.is_object()) return nullptr;
    const auto found = value.find(name);
    return found == value.end() ? nullptr : &*found;
}

std::optional<std::string> string(const Value& value, std::string_view name) {
    const Value* found = member(value, name);
    if (found == nullptr || !found->is_string()) return std::nullopt;
    return found->get_ref<const std::string&>();
}

std::optional<std::int64_t> integer(const Value& value, std::string_view name) {
    const Value* found = member(value, name);
    if (found == nullptr) return std::nullopt;
    if (found->is_number_float()) return wholeNumber(found->get<double>());
    if (found->is_number_unsigned() && found->get<std::uint64_t>() > static_cast<std::uint64_t>(INT64_MAX)) {
        return std::nullopt;
    }
    if (!found->is_number_integer()) return std::nullopt;
    return found->get<std::int64_t>();
}

std::optional<double> number(const Value& value, std::string_view name) {
    const Value* found = member(value, name);
    if (found == nullptr || !found->is_number()) return std::nullopt;
    return found->get<double>();
}

std::optional<bool> boolean(const Value& value, std::string_view name) {
    const Value* found = member(value, name);
    if (found == nullptr || !found->is_boolean()) return std::nullopt;
    return found->get<bool>();
}

}  // namespace ovrin::json
