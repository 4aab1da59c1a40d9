#include "storage/history_store.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <memory>
#include <unordered_map>
#include <utility>

namespace ovrin {
namespace {

constexpr std::size_t maximumFileSize = 256U << 20U;  // bytes

bool isNewer(const HistoryRecord& first, const HistoryRecord& second) {
    return first.createdAt > second.createdAt;
}

std::unordered_set<Uuid> idsOf(const HistoryRecords& records) {
    std::unordered_set<Uuid> ids;
    for (const HistoryRecord& record : records) ids.insert(record.id);
    return ids;
}

// The right to write the file; none when it cannot be had.
std::unique_ptr<files::FileLock> lockedFile(const std::filesystem::path& file) {
    try {
        files::makeDirectories(file.parent_path());
        return std::make_unique<files::FileLock>(file);
    } catch (const files::FileError&) {
        return nullptr;  // failures of storage are silent
    }
}

}  // namespace

HistoryStore::HistoryStore(std::filesystem::path fileURL, text::CaseRules caseRules, Clock clock)
    : fileURL_(std::move(fileURL)), caseRules_(caseRules), clock_(std::move(clock)) {
    try {
        files::makeDirectories(fileURL_.parent_path());
    } catch (const files::FileError&) {
        // Failures of storage are silent; without a folder the history lives in memory only.
    }
    refresh();
}

void HistoryStore::save(Entry entry) {
    change([&](HistoryRecords& records) {
        records.insert(records.begin(), HistoryRecord{.id = Uuid::random(),
                                                      .createdAt = clock_(),
                                                      .sourceText = std::move(entry.sourceText),
                                                      .resultText = std::move(entry.resultText),
                                                      .recordType = std::string(entry.recordType)});
        if (records.size() > maximumRecords) records.resize(maximumRecords);
        return true;
    });
}

void HistoryStore::updateLatestResult(std::string_view sourceText, std::string resultText) {
    change([&](HistoryRecords& records) {
        const auto latest = std::find_if(records.begin(), records.end(), [&](const HistoryRecord& record) {
            return text::canonicallyEqual(record.sourceText, sourceText);
        });
        if (latest == records.end()) return false;
        latest->resultText = std::move(resultText);
        unwrittenResults_.insert(latest->id);
        return true;
    });
}

HistoryRecords HistoryStore::search(std::string_view query) const {
    const HistoryRecords& records = records_.value();
    if (text::trimmed(query).empty()) return records;
    const text::CaseInsensitiveQuery wanted(query, caseRules_);
    HistoryRecords found;
    std::copy_if(records.begin(), records.end(), std::back_inserter(found), [&](const HistoryRecord& record) {
        return wanted.isFoundIn(record.sourceText) || (record.resultText && wanted.isFoundIn(*record.resultText));
    });
    return found;
}

void HistoryStore::deleteRecord(const Uuid& id) {
    change([&](HistoryRecords& records) {
        std::erase_if(records, [&](const HistoryRecord& record) { return record.id == id; });
        return true;
    });
}

void HistoryStore::deleteAll() {
    change([](HistoryRecords& records) {
        records.clear();
        return true;
    });
}

void HistoryStore::refresh() {
    if (stamp_.stillHolds(fileURL_)) return;
    HistoryRecords records = records_.value();
    takeOver(records);
    records_.set(std::move(records));
}

// The file is written before the change is published: observers may take their time, the lock must not wait for them.
void HistoryStore::change(const Edit& edit) {
    HistoryRecords records = records_.value();
    {
        const auto lock = lockedFile(fileURL_);
        takeOver(records);
        // Without the lock another process may be writing; this change then goes to the file with the next one.
        if (edit(records) && lock != nullptr) persist(records);
    }
    records_.set(std::move(records));
}

void HistoryStore::takeOver(HistoryRecords& records) {
    if (stamp_.stillHolds(fileURL_)) return;
    stamp_ = files::Stamp::of(fileURL_);  // before reading, so that a change in between is noticed next time
    try {
        auto fromFile = decodedHistory(files::readFile(fileURL_, maximumFileSize));
        isUnreadable_ = !fromFile;
        if (fromFile) merge(records, std::move(*fromFile));
    } catch (const files::FileError& error) {
        isUnreadable_ = error.code() != ENOENT && error.code() != ENOTDIR;
    }
}

// The file's records, with what this process changed and could not write applied again.
void HistoryStore::merge(HistoryRecords& records, HistoryRecords fromFile) {
    const std::unordered_set<Uuid> idsInFile = idsOf(fromFile);
    std::unordered_map<Uuid, const HistoryRecord*> own;
    HistoryRecords merged;
    for (const HistoryRecord& record : records) {
        own.emplace(record.id, &record);
        if (!written_.contains(record.id) && !idsInFile.contains(record.id)) merged.push_back(record);
    }
    for (HistoryRecord& record : fromFile) {
        const auto known = own.find(record.id);
        if (known == own.end() && written_.contains(record.id)) continue;  // deleted here
        if (unwrittenResults_.contains(record.id) && known != own.end()) record.resultText = known->second->resultText;
        merged.push_back(std::move(record));
    }
    std::stable_sort(merged.begin(), merged.end(), isNewer);
    records = std::move(merged);
    written_ = idsInFile;
}

void HistoryStore::persist(const HistoryRecords& records) {
    try {
        if (isUnreadable_) files::keepAside(fileURL_);
        files::replaceFile(fileURL_, encodedHistory(records), files::Access::onlyUser);
    } catch (const files::FileError&) {
        return;  // failures of storage are silent; memory keeps the change
    }
    stamp_ = files::Stamp::ofReplaced(fileURL_);
    isUnreadable_ = false;
    written_ = idsOf(records);
    unwrittenResults_.clear();
}

}  // namespace ovrin
