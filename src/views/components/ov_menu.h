// A menu in the program's look. An ordinary QMenu otherwise: icons go through setItemIcon(), what stands at the right
// edge of an item follows a tab in its text.
#pragma once

#include <QMenu>
#include <cstdint>
#include <utility>

#include "theme/ov_icon.h"
#include "views/components/view_environment.h"

namespace ovrin {

class OVMenu : public QMenu {
    Q_OBJECT

public:
    explicit OVMenu(ViewEnvironment& environment, QWidget* parent = nullptr);

    enum class Entry : std::uint8_t { available, unavailable };

    // An entry that calls the action when it is chosen.
    template <typename Action>
    void add(const QString& text, Entry entry, Action action) {
        addAction(text, this, std::move(action))->setEnabled(entry == Entry::available);
    }

    // A submenu under an item with the title, owned by this menu.
    OVMenu* addSubmenu(const QString& title);

    void setItemIcon(QAction& item, OVIcon icon) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    ViewEnvironment& environment_;
};

}  // namespace ovrin
