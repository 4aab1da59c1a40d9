// One line of the custom headers.
#pragma once

#include "base/uuid.h"
#include "settings/header_entry.h"
#include "views/components/ov_widget.h"

namespace ovrin {

class OVIconButton;
class OVTextField;

class HeaderRow final : public OVWidget {
    Q_OBJECT

public:
    HeaderRow(ViewEnvironment& environment, const Uuid& id, QWidget* parent = nullptr);

    const Uuid& id() const { return id_; }
    void show(const HeaderEntry& header);
    // Which of the lines it is, from 1 on; its controls are named after that.
    void setNumber(int number);
    void setNamePlaceholder(const QString& placeholder);
    // Has the Tab key come to its controls from this one; gives the last of them.
    QWidget& followInTabOrder(QWidget& before);
    void focusName();
    void focusRemoveButton();

signals:
    void nameEdited(const QString& name);
    void valueEdited(const QString& value);
    void removeRequested();

private:
    Uuid id_;
    OVTextField* name_;
    OVTextField* value_;
    OVIconButton* remove_;
};

}  // namespace ovrin
