// The list of past results: kept in memory, newest first, and written whole to one file after every change.
//
// Belongs to the main thread. Nothing here reports a failure: what cannot be read starts empty (and is kept aside
// before it is overwritten), what cannot be written stays in memory and goes to the file with the next change, or when
// it is asked for. Another process may write the same file: every change first takes over what that one did.
#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "base/date_time.h"
#include "base/files.h"
#include "base/published.h"
#include "base/task.h"
#include "base/text.h"
#include "base/uuid.h"
#include "storage/history_format.h"
#include "storage/history_record.h"
#include "storage/history_search.h"

namespace ovrin {

class WorkerExecutor;

class HistoryStore {
public:
    static constexpr std::size_t maximumRecords = 500;

    // What a flow has to say about its result; identity and time are the store's.
    struct Entry {
        std::string sourceText;
        std::optional<std::string> resultText;
        std::string_view recordType;  // one of historyRecordType
    };

    // Makes the file's folder and loads the file. caseRules: those of the user's locale, for search().
    HistoryStore(std::filesystem::path fileURL, text::CaseRules caseRules, Clock clock);

    // For a program that must not wait: from now on a change waits no longer than the patience for the lock that
    // another process holds, and deferred is called after every change that could not be written.
    void deferChanges(std::chrono::milliseconds patience, std::function<void()> deferred);

    bool hasUnwrittenChanges() const { return isUnwritten_; }
    // Writes them, together with what other processes have written meanwhile; whether none are left.
    bool writeDeferred(std::chrono::milliseconds patience);

    // Newest first. Only the operations below change it; observers must not call those meanwhile.
    const Published<HistoryRecords>& records() const { return records_; }

    // A new record at the front; beyond 500 the oldest go.
    void save(Entry entry);

    // Gives the newest record with canonically the same source text its result; without one nothing happens.
    void updateLatestResult(std::string_view sourceText, std::string resultText);

    // The records whose source or result contains the query as it is, letter case aside; all of them for a blank query.
    HistoryRecords search(std::string_view query) const { return searchFor(query).run(); }
    // The same search, to be run on another thread: through the records as they are now.
    HistorySearch searchFor(std::string_view query) const { return {records_.value(), query, caseRules_}; }

    void deleteRecord(const Uuid& id);
    // With the copies of files that could not be read.
    void deleteAll();

    // Takes over what another process wrote since. The second reads the file on the worker and leaves the calling
    // thread free meanwhile; a change of this process in between has taken over everything itself.
    void refresh();
    Task<void> refreshOn(WorkerExecutor& worker);

    const std::filesystem::path& fileURL() const { return fileURL_; }

private:
    // What the file holds at one moment.
    struct Content {
        files::Stamp stamp;  // from before it was read, so that a change in between is noticed next time
        std::optional<HistoryRecords> records{};
        bool isUnreadable = false;
    };
    static Content contentOf(const std::filesystem::path& file);  // any thread

    using Edit = std::function<bool(HistoryRecords&)>;  // tells whether the list has to be written

    void change(const Edit& edit);
    void takeOver(HistoryRecords& records);
    void takeOver(HistoryRecords& records, Content content);
    void merge(HistoryRecords& records, HistoryRecords fromFile);
    void persist(const HistoryRecords& records);

    std::filesystem::path fileURL_;
    text::CaseRules caseRules_;
    Clock clock_;
    Published<HistoryRecords> records_;
    std::chrono::milliseconds patience_ = files::FileLock::defaultPatience;
    std::function<void()> deferred_;
    bool isUnwritten_ = false;

    // What is known of the file: how it looked, whether it could be read, and which records it held.
    files::Stamp stamp_;
    bool isUnreadable_ = false;
    std::unordered_set<Uuid> written_;
    std::unordered_set<Uuid> unwrittenResults_;  // records whose result changed since
};

}  // namespace ovrin
