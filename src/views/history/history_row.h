// One record in the history: what made it and when, the beginning of its texts, and what can be done with it.
#pragma once

#include <QString>
#include <memory>
#include <optional>

#include "storage/history_record.h"
#include "views/components/ov_surface.h"
#include "views/components/preview_text.h"

namespace ovrin {

class OVAnimatedIcon;
class OVIconButton;
class OVStatusPill;

class HistoryRow final : public OVSurface {
    Q_OBJECT

public:
    // How many lines its texts take at its width.
    struct Lines {
        int source = 1;
        int result = 0;  // none: there is no result to show

        friend bool operator==(const Lines&, const Lines&) = default;
    };

    explicit HistoryRow(ViewEnvironment& environment, QWidget* parent = nullptr);

    // In points: that of a row, and the room for its texts in a row of a width.
    static int height(const Lines& lines);
    static int textWidth(int rowWidth);
    static QFont textFont();

    // time: when it was saved, for the user.
    void setRecord(std::shared_ptr<const HistoryRecord> record, const QString& time);
    void setLines(const Lines& lines);
    const std::shared_ptr<const HistoryRecord>& record() const { return record_; }

    // Only one row of a list is reached by the Tab key, and its buttons after it.
    void setTabStop(bool isTabStop);
    OVIconButton* copyButton() const { return copy_; }
    OVIconButton* deleteButton() const { return delete_; }

signals:
    void opened();
    void copyRequested();
    void deletionRequested();
    void menuRequested(const QPoint& place);  // on the screen

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void drawGround(QPainter& painter) const;

    std::shared_ptr<const HistoryRecord> record_;
    QString time_;
    std::optional<PreviewText> source_;
    std::optional<PreviewText> result_;
    Lines lines_;
    OVStatusPill* pill_;
    OVIconButton* copy_;
    OVIconButton* delete_;
    bool isPressed_ = false;
};

}  // namespace ovrin
