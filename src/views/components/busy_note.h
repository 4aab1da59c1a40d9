// A small busy indicator with words beside it.
#pragma once

#include "views/components/ov_widget.h"

namespace ovrin {

class BusyNote final : public OVWidget {
    Q_OBJECT

public:
    BusyNote(ViewEnvironment& environment, const QString& words, QWidget* parent = nullptr);
};

}  // namespace ovrin
