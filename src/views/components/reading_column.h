// What is read in a window, one thing below the other in a column of limited width that is centred in a wider window.
#pragma once

#include "views/components/ov_widget.h"

class QVBoxLayout;

namespace ovrin {

class OVScrollArea;
class OVStreamingText;

class ReadingColumn : public OVWidget {
    Q_OBJECT

public:
    // It lies in the area.
    ReadingColumn(ViewEnvironment& environment, OVScrollArea& area);

    // What is laid out here starts at the top.
    QVBoxLayout& column() const { return *column_; }

    // Lets a text of the column be selected beyond the area's edge, and its links be followed.
    void makeReadable(OVStreamingText& text);

private:
    OVScrollArea& area_;
    QVBoxLayout* column_;
};

}  // namespace ovrin
