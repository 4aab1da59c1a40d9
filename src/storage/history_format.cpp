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

std::shared_ptr<const HistoryRecord> decodedRecord(const json::Value& object) {
    const auto id = Uuid::parse(json::string(object, "id").value_or(""));
    const auto createdAt = parseIso8601(json::string(object, "createdAt").value_or(""));
    auto sourceText = json::string(object, "sourceText");
    auto recordType = json::string(object, "recordType");
    auto resultText = json::string(object, "resultText");
    if (!id || !createdAt || !sourceText || !recordType) return nullptr;
    if (!resultText && !isAbsent(object, "resultText")) return nullptr;
    return std::make_shared<const HistoryRecord>(HistoryRecord{.id = *id,
                                                               .createdAt = *createdAt,
                                                               .sourceText = std::move(*sourceText),
                                                               .resultText = std::move(resultText),
                                                               .recordType = std::move(*recordType)});
}

void appendRecord(std::string& document, const HistoryRecord& record) {
    const auto append = [&](std::string_view name, std::string_view value) {
        document += name;
        json::appendString(document, value);
    };
    append(R"({"createdAt":)", iso8601Text(record.createdAt));
    append(R"(,"id":)", record.id.text());
    append(R"(,"recordType":)", record.recordType);
    if (record.resultText) append(R"(,"resultText":)", *record.resultText);
    append(R"(,"sourceText":)", record.sourceText);
    document += '}';
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
        records.push_back(std::move(record));
    }
    std::stable_sort(records.begin(), records.end(),
                     [](const auto& first, const auto& second) { return first->createdAt > second->createdAt; });
    return records;
}

// Without a tree, which would hold every text once more and takes four times as long: the main thread waits for this.
std::string encodedHistory(const HistoryRecords& records) {
    std::string document = "[";
    for (const auto& record : records) {
        if (document.size() > 1) document += ',';
        appendRecord(document, *record);
    }
    document += ']';
    return document;
}

}  // namespace ovrin
