#include "views/history/history_accessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include "views/history/history_list.h"
#include "views/history/history_row.h"

namespace ovrin {

namespace {

class AccessibleHistoryList final : public QAccessibleWidget {
public:
    explicit AccessibleHistoryList(HistoryList* list) : QAccessibleWidget(list, QAccessible::List), list_(list) {}

    int childCount() const override { return static_cast<int>(list_->rows().size()); }
    QAccessibleInterface* child(int index) const override {
        const auto rows = list_->rows();
        return index >= 0 && index < rows.size() ? QAccessible::queryAccessibleInterface(rows[index]) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return static_cast<int>(list_->rows().indexOf(static_cast<HistoryRow*>(child->object())));
    }

private:
    HistoryList* list_;
};

class AccessibleHistoryRow final : public QAccessibleWidget {
public:
    explicit AccessibleHistoryRow(HistoryRow* row) : QAccessibleWidget(row, QAccessible::ListItem), row_(row) {}

    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString& name) override {
        if (name == pressAction()) {
            emit row_->opened();
        } else {
            QAccessibleWidget::doAction(name);
        }
    }

private:
    HistoryRow* row_;
};

QAccessibleInterface* makeHistoryInterface(const QString& className, QObject* object) {
    if (className == QLatin1String("ovrin::HistoryList")) {
        return new AccessibleHistoryList(static_cast<HistoryList*>(object));
    }
    if (className == QLatin1String("ovrin::HistoryRow")) {
        return new AccessibleHistoryRow(static_cast<HistoryRow*>(object));
    }
    return nullptr;
}

}  // namespace

void installHistoryAccessibility() {
    QAccessible::installFactory(&makeHistoryInterface);
}

}  // namespace ovrin
