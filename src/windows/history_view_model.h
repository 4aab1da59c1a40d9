// The history window without its window: the search, the filter, the records that pass both, and what can be done with
// each.
//
// Main thread. The search runs on a thread of the model's own; the list of a later query is never replaced by that of
// an earlier one. Records are shared with the store, not copied.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "base/environment.h"
#include "base/event_loop.h"
#include "base/local_date_time.h"
#include "base/published.h"
#include "base/running_task.h"
#include "base/task.h"
#include "base/uuid.h"
#include "base/worker_executor.h"
#include "platform/file_watcher.h"
#include "storage/history_format.h"
#include "windows/history_filter.h"

namespace ovrin {

class ClipboardService;
class HistorySearch;
class HistoryStore;
class ResultPresenter;
class ToastPresenter;

class HistoryViewModel {
public:
    // What the model works with; the references outlive it.
    struct Services {
        EventLoop& loop;
        HistoryStore& history;
        FileWatcher& files;
        ResultPresenter& resultPanel;
        ClipboardService& clipboard;
        ToastPresenter& toasts;
        Environment environment;  // for the locale of dates
    };

    explicit HistoryViewModel(Services services);
    HistoryViewModel(const HistoryViewModel&) = delete;
    HistoryViewModel& operator=(const HistoryViewModel&) = delete;

    const Published<std::string>& searchText() const { return searchText_; }
    const Published<HistoryFilter>& selectedType() const { return selectedType_; }
    // The visible records, newest first. It follows the search text as soon as the search is done.
    const Published<HistoryRecords>& filtered() const { return filtered_; }
    const Published<bool>& canDeleteAll() const { return canDeleteAll_; }
    // The question before everything is deleted is on show.
    const Published<bool>& confirmsDeleteAll() const { return confirmsDeleteAll_; }

    // Whether the last change of the filter went to the right.
    bool movesForward() const { return movesForward_; }
    // What an empty list says above the line that stays the same.
    std::string emptyHeadline() const;
    std::string timeText(const HistoryRecord& record) const { return dateTimes_.text(record.createdAt); }

    void setSearchText(std::string text);
    void selectFilter(HistoryFilter filter);

    // Shows the record in the result panel again.
    void open(const HistoryRecord& record);
    // Its result, or its source text where there is none (or an empty one).
    void copy(const HistoryRecord& record);
    void deleteRecord(const Uuid& id);

    // Nothing when there is nothing to delete.
    void askToDeleteAll();
    void cancelDeleteAll() { confirmsDeleteAll_.set(false); }
    void deleteAll();

    // While the window is on the screen the list follows what other processes write.
    void setVisible(bool isVisible);

private:
    void recordsChanged(const HistoryRecords& records);
    void search();
    Task<void> runSearch(HistorySearch search);
    void showFound();

    Services services_;
    LocalDateTimeFormat dateTimes_;
    Published<std::string> searchText_;
    Published<HistoryFilter> selectedType_{HistoryFilter::all};
    Published<HistoryRecords> filtered_;
    Published<bool> canDeleteAll_;
    Published<bool> confirmsDeleteAll_;
    bool movesForward_ = true;
    HistoryRecords found_;  // by the last search that was completed
    Subscription changes_;
    std::unique_ptr<FileWatch> watch_;  // while the window is visible
    WorkerExecutor worker_{2};          // a search does not wait for a slow disk
    TaskSlot search_;                   // the last members: they end before what they use
    TaskSlot refresh_;
};

}  // namespace ovrin
