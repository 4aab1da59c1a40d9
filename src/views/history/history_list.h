// The records of the history as rows, newest first. Only the rows that are in sight exist as widgets (and the one that
// has the keyboard), however long the history is.
//
// What is being read stays where it is: records that come or go elsewhere move nothing that is in sight, unless the
// list stands at its top and no row has the keyboard; then new records appear there.
#pragma once

#include <QList>
#include <cstddef>
#include <optional>
#include <unordered_map>
#include <vector>

#include "base/published.h"
#include "base/uuid.h"
#include "storage/history_format.h"
#include "views/components/ov_widget.h"
#include "views/history/history_row.h"

class QKeyEvent;

namespace ovrin {

class HistoryViewModel;
class OVScrollArea;

class HistoryList final : public OVWidget {
    Q_OBJECT

public:
    // Becomes the content of the area. The view model outlives it.
    HistoryList(ViewEnvironment& environment, HistoryViewModel& viewModel, OVScrollArea& area);

    // Gives the keyboard to the row that had it last, or to the first in sight.
    void focusRow();
    void scrollToTop();

    // Those that exist, from the top to the bottom.
    QList<HistoryRow*> rows() const;

signals:
    // The last row has gone, and it had the keyboard.
    void keyboardLost();

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // What a record needs to stand on one line; infinite for what takes more.
    struct TextWidths {
        double source = 0;
        double result = -1;  // negative: there is no result
    };
    using Index = std::ptrdiff_t;  // of a record, from the newest on; -1 for none
    struct Anchor {
        Uuid id;
        int offset = 0;  // of the upper edge of its row from that of what is in sight
    };

    void showRecords(const HistoryRecords& records);
    void measure();
    HistoryRow::Lines linesOf(Index index) const;
    void placeRows();
    void showRows();
    HistoryRow& rowOf(Index index);
    void dropRowsOutside(Index first, Index last);

    Index count() const { return static_cast<Index>(records_.size()); }
    const HistoryRecord& record(Index index) const { return *records_[static_cast<std::size_t>(index)]; }
    Index indexOf(const Uuid& id) const;
    Index indexAt(int y) const;
    Index firstInSight() const;
    Index focusedIndex() const;
    Index survivorOf(const HistoryRecords& before, Index index) const;
    QRect rowFrame(Index index) const;
    int scrollPosition() const;
    void scrollTo(int position);

    std::optional<Anchor> anchor() const;
    void restore(const std::optional<Anchor>& anchor, const HistoryRecords& before);
    void moveTo(Index index);
    bool handleKey(QKeyEvent& event);
    Index target(int key, Index from) const;
    void deleteRecord(const HistoryRow& row);
    void showMenu(HistoryRow& row, const QPoint& place);

    HistoryViewModel& viewModel_;
    OVScrollArea& area_;
    HistoryRecords records_;
    std::unordered_map<const HistoryRecord*, TextWidths> widths_;  // of each of the records
    std::vector<int> tops_;                                        // of each row, and the end of the list
    std::unordered_map<Uuid, HistoryRow*> rows_;                   // that exist
    std::optional<Uuid> current_;                                  // that had the keyboard last
    int laidOutWidth_ = 0;
    Subscription changes_;
};

}  // namespace ovrin
