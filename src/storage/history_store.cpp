#include "storage/history_store.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <memory>
#include <unordered_map>
#include <utility>

#include "base/worker_executor.h"

namespace ovrin {
namespace {

constexpr std::size_t maximumFileSize = 256U << 20U;  // bytes

bool isNewer(const std::shared_ptr<const HistoryRecord>& first, const std::shared_ptr<const HistoryRecord>& second) {
    return first->createdAt > second->createdAt;
}

std::shared_ptr<const HistoryRecord> withResult(const HistoryRecord& record, std::optional<std::string> resultText) {
    HistoryRecord changed = record;
    changed.resultText = std::move(resultText);
    return std::make_shared<const HistoryRecord>(std::move(changed));
}

std::unordered_set<Uuid> idsOf(const HistoryRecords& records) {
    std::unordered_set<Uuid> ids;
    for (const auto& record : records) ids.insert(record->id);
    return ids;
}

// The right to write the file; none when it cannot be had.
std::unique_ptr<files::FileLock> lockedFile(const std::filesystem::path& file, std::chrono::milliseconds patience) {
    try {
        files::makeDirectories(file.parent_path());
        return std::make_unique<files::FileLock>(file, patience);
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
        HistoryRecord record{.id = Uuid::random(),
                             .createdAt = clock_(),
                             .sourceText = std::move(entry.sourceText),
                             .resultText = std::move(entry.resultText),
                             .recordType = std::string(entry.recordType)};
        records.insert(records.begin(), std::make_shared<const HistoryRecord>(std::move(record)));
        if (records.size() > maximumRecords) records.resize(maximumRecords);
        return true;
    });
}

void HistoryStore::updateLatestResult(std::string_view sourceText, std::string resultText) {
    change([&](HistoryRecords& records) {
        const auto latest = std::find_if(records.begin(), records.end(), [&](const auto& record) {
            return text::canonicallyEqual(record->sourceText, sourceText);
        });
        if (latest == records.end()) return false;
        *latest = withResult(**latest, std::move(resultText));
        unwrittenResults_.insert((*latest)->id);
        return true;
    });
}

void HistoryStore::deleteRecord(const Uuid& id) {
    change([&](HistoryRecords& records) {
        std::erase_if(records, [&](const auto& record) { return record->id == id; });
        return true;
    });
}

void HistoryStore::deleteAll() {
    change([this](HistoryRecords& records) {
        records.clear();
        isUnreadable_ = false;  // nothing is to be kept of it
        return true;
    });
    try {
        files::removeKeptAside(fileURL_);
    } catch (const files::FileError&) {
        // Failures of storage are silent.
    }
}

void HistoryStore::deferChanges(std::chrono::milliseconds patience, std::function<void()> deferred) {
    patience_ = patience;
    deferred_ = std::move(deferred);
}

bool HistoryStore::writeDeferred(std::chrono::milliseconds patience) {
    if (!isUnwritten_) return true;
    HistoryRecords records = records_.value();
    {
        const auto lock = lockedFile(fileURL_, patience);
        if (lock == nullptr) return false;
        takeOver(records);
        persist(records);
    }
    records_.set(std::move(records));
    return !isUnwritten_;
}

void HistoryStore::refresh() {
    if (stamp_.stillHolds(fileURL_)) return;
    HistoryRecords records = records_.value();
    takeOver(records);
    records_.set(std::move(records));
}

Task<void> HistoryStore::refreshOn(WorkerExecutor& worker) {
    const files::Stamp known = stamp_;
    if (known.stillHolds(fileURL_)) co_return;
    auto read = [file = fileURL_](const std::stop_token& /*stop*/) { return contentOf(file); };
    Content content = co_await worker.run(std::move(read));
    if (stamp_ != known) co_return;
    HistoryRecords records = records_.value();
    takeOver(records, std::move(content));
    records_.set(std::move(records));
}

// The file is written before the change is published: observers may take their time, the lock must not wait for them.
void HistoryStore::change(const Edit& edit) {
    HistoryRecords records = records_.value();
    {
        const auto lock = lockedFile(fileURL_, patience_);
        takeOver(records);
        // Without the lock another process may be writing; this change then goes to the file later.
        if (edit(records)) {
            isUnwritten_ = true;
            if (lock != nullptr) persist(records);
        }
    }
    records_.set(std::move(records));
    if (isUnwritten_ && deferred_) deferred_();
}

void HistoryStore::takeOver(HistoryRecords& records) {
    if (!stamp_.stillHolds(fileURL_)) takeOver(records, contentOf(fileURL_));
}

void HistoryStore::takeOver(HistoryRecords& records, Content content) {
    stamp_ = content.stamp;
    isUnreadable_ = content.isUnreadable;
    if (content.records) merge(records, std::move(*content.records));
}

HistoryStore::Content HistoryStore::contentOf(const std::filesystem::path& file) {
    Content content{.stamp = files::Stamp::of(file)};
    try {
        content.records = decodedHistory(files::readFile(file, maximumFileSize));
        content.isUnreadable = !content.records;
    } catch (const files::FileError& error) {
        content.isUnreadable = error.code() != ENOENT && error.code() != ENOTDIR;
    }
    return content;
}

// The file's records, with what this process changed and could not write applied again. Those that are as they were
// stay the same objects.
void HistoryStore::merge(HistoryRecords& records, HistoryRecords fromFile) {
    const std::unordered_set<Uuid> idsInFile = idsOf(fromFile);
    std::unordered_map<Uuid, std::shared_ptr<const HistoryRecord>> own;
    HistoryRecords merged;
    for (const auto& record : records) {
        own.emplace(record->id, record);
        if (!written_.contains(record->id) && !idsInFile.contains(record->id)) merged.push_back(record);
    }
    for (auto& record : fromFile) {
        const auto known = own.find(record->id);
        if (known == own.end()) {
            if (!written_.contains(record->id)) merged.push_back(std::move(record));  // else it was deleted here
            continue;
        }
        if (unwrittenResults_.contains(record->id)) record = withResult(*record, known->second->resultText);
        merged.push_back(*record == *known->second ? known->second : std::move(record));
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
    isUnwritten_ = false;
    written_ = idsOf(records);
    unwrittenResults_.clear();
}

}  // namespace ovrin
