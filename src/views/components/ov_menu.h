// A context menu in the program's own look. Make one for each time it opens.
#pragma once

#include <QMenu>

#include "views/components/view_environment.h"

namespace ovrin {

class OVMenu final : public QMenu {
    Q_OBJECT

public:
    explicit OVMenu(ViewEnvironment& environment, QWidget* parent = nullptr);

    enum class Entry : std::uint8_t { available, unavailable };

    // An entry that calls the action when it is chosen.
    template <typename Action>
    void add(const QString& text, Entry entry, Action action) {
        addAction(text, this, std::move(action))->setEnabled(entry == Entry::available);
    }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    ViewEnvironment& environment_;
};

}  // namespace ovrin
