// A small busy indicator with words beside it.
#pragma once

#include <string>

#include "views/components/ov_widget.h"

namespace ovrin {

class OVLabel;

class BusyNote final : public OVWidget {
    Q_OBJECT

public:
    BusyNote(ViewEnvironment& environment, const QString& words, QWidget* parent = nullptr);

    // More of what goes on, behind the words; may be empty.
    void setDetail(const std::string& utf8);

private:
    OVLabel* detail_;
};

}  // namespace ovrin
