// The decoding rules that the records of both wire standards share.
//
// Unknown keys are skipped, of a repeated key the last value counts. Each function reads one value and returns whether
// it fits; whatever a value that does not fit leaves behind is of no use.
#pragma once

#include <optional>
#include <string>
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
