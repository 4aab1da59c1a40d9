// The decoding rules that the records of both wire standards share.
//
// Unknown keys are skipped, of a repeated key the last value counts. Each function reads one value and returns whether
// it fits; whatever a value that does not fit leaves behind is of no use.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/json_reader.h"

namespace ovrin {

// A text that may be absent or null.
inline bool readOptionalString(JSONReader& reader, std::optional<std::string>& value) {
    value.reset();
    return reader.readNull() || reader.readString(value.emplace());
}

// A record that may be absent or null; read(reader, record) reads it.
template <typename Record, typename Read>
bool readOptional(JSONReader& reader, std::optional<Record>& value, Read read) {
    value.reset();
    return reader.readNull() || read(reader, value.emplace());
}

// A list of records. One that does not fit spoils the list; the rest is then skipped.
template <typename Record, typename Read>
bool readList(JSONReader& reader, std::vector<Record>& list, Read read) {
    list.clear();
    bool fits = true;
    const bool isArray = reader.readArray([&] {
        if (fits) {
            fits = read(reader, list.emplace_back());
        } else {
            reader.skip();
        }
    });
    return isArray && fits;
}

// One key of a record and how its value is read; fits says whether what was read (or that nothing was) is right.
template <typename Read>
struct RecordField {
    std::string_view key;
    Read read;
    bool fits;
};

// A field that has to be there, and one that may be absent; read(reader) reads its value.
template <typename Read>
RecordField<Read> required(std::string_view key, Read read) {
    return {key, std::move(read), false};
}
template <typename Read>
RecordField<Read> optional(std::string_view key, Read read) {
    return {key, std::move(read), true};
}

// The same for texts.
inline auto required(std::string_view key, std::string& value) {
    return required(key, [&value](JSONReader& reader) { return reader.readString(value); });
}
inline auto optional(std::string_view key, std::optional<std::string>& value) {
    return optional(key, [&value](JSONReader& reader) { return readOptionalString(reader, value); });
}

// Reads an object of the given fields.
template <typename... Reads>
bool readRecord(JSONReader& reader, RecordField<Reads>... fields) {
    const bool isObject = reader.readObject([&](std::string_view key) {
        const auto readIfMeant = [&](auto& field) {
            if (field.key != key) return false;
            field.fits = field.read(reader);
            return true;
        };
        if (!(readIfMeant(fields) || ...)) reader.skip();
    });
    return isObject && (fields.fits && ...);
}

// Decodes a whole JSON text as one record; none when it does not fit.
template <typename Record, typename Read>
std::optional<Record> decodeWhole(std::string_view json, Read read) {
    std::optional<Record> record(std::in_place);
    JSONReader reader(json);
    const bool fits = read(reader, *record);
    if (!fits || !reader.isComplete()) record.reset();
    return record;
}

}  // namespace ovrin
