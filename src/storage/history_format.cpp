#include "storage/history_format.h"

#include <algorithm>
#include <utility>

#include <nlohmann/json.hpp>

#include "base/json.h"

namespace ovrin {
namespace {

bool isAbsent(const json::Value& object, std::string_view name) {
    const json::Value* found = json::member(object, name);
    return found == nullptr || found->is_null();
}

std::optional<HistoryRecord> decodedRecord(const json::Value& object) {
    const auto id = Uuid::parse(json::string(object, "id").value_or(""));
    const auto createdAt = parseIso8601(json::string(object, "createdAt").value_or(""));
    auto sourceText = json::string(object, "sourceText");
    auto recordType = json::string(object, "recordType");
    auto resultText = json::string(object, "resultText");
    if (!id || !createdAt || !sourceText || !recordType) return std::nullopt;
    if (!resultText && !isAbsent(object, "resultText")) return std::nullopt;
    return HistoryRecord{.id = *id,
                         .createdAt = *createdAt,
                         .sourceText = std::move(*sourceText),
                         .resultText = std::move(resultText),
                         .recordType = std::move(*recordType)};
}

json::Value encodedRecord(const HistoryRecord& record) {
    json::Value object = {{"id", record.id.text()},
                          {"createdAt", iso8601Text(record.createdAt)},
                          {"sourceText", record.sourceText},
                          {"recordType", record.recordType}};
    if (record.resultText) object["resultText"] = *record.resultText;
    return object;
}

}  // namespace

std::optional<HistoryRecords> decodedHistory(std::string_view document) {
    const auto array = json::parse(document);
    if (!array || !array->is_array()) return std::nullopt;
    HistoryRecords records;
    records.reserve(array->size());
    for (const json::Value& object : *array) {
        auto record = decodedRecord(object);
        if (!record) return std::nullopt;
        records.push_back(std::move(*record));
    }
    std::stable_sort(records.begin(), records.end(), [](const HistoryRecord& first, const HistoryRecord& second) {
        return first.createdAt > second.createdAt;
    });
    return records;
}

std::string encodedHistory(const HistoryRecords& records) {
    json::Value array = json::Value::array();
    for (const HistoryRecord& record : records) array.push_back(encodedRecord(record));
    return json::encoded(array);
}

}  // namespace ovrin
