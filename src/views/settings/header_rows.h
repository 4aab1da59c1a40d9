// The custom headers: a line for each with its name, its value and a button that removes it.
#pragma once

#include <vector>

#include "base/uuid.h"
#include "settings/header_entry.h"
#include "views/components/ov_widget.h"

class QVBoxLayout;

namespace ovrin {

class HeaderRow;
class SettingsStore;

class HeaderRows final : public OVWidget {
    Q_OBJECT

public:
    // Shows nothing yet. The store outlives it.
    HeaderRows(ViewEnvironment& environment, SettingsStore& store, QWidget* parent = nullptr);

    // Lines stay the widgets they are while their header does, so that the one being typed in is left alone.
    void show(const std::vector<HeaderEntry>& headers);
    void setNamePlaceholder(const QString& placeholder);
    // The control of the same window from which the Tab key goes on to the first line. It outlives the lines.
    void setTabPredecessor(QWidget& control) { tabPredecessor_ = &control; }
    // Gives the keyboard to the last line.
    void focusLast();

signals:
    // The last one was removed, which had the keyboard.
    void emptied();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void orderTabs();
    HeaderRow* makeRow(const Uuid& id);
    void remove(const Uuid& id);

    SettingsStore& store_;
    QVBoxLayout* column_;
    std::vector<HeaderRow*> rows_;
    QString namePlaceholder_;
    QWidget* tabPredecessor_ = nullptr;
};

}  // namespace ovrin
