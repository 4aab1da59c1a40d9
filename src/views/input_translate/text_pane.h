// One half of the window: a card with a title and some controls over a text.
#pragma once

#include "views/components/ov_surface.h"

class QHBoxLayout;
class QVBoxLayout;

namespace ovrin {

class TextPane : public OVSurface {
    Q_OBJECT

public:
    static constexpr int padding = 14;  // between the card's edge and its texts
    static constexpr int scrollBarMargin = 2;
    static constexpr double cornerRadius = 12;

    TextPane(ViewEnvironment& environment, const QString& title, QWidget* parent = nullptr);

protected:
    void addBesideTitle(QWidget* widget);
    void addAction(QWidget* control);  // at the right end of the title's row
    // Its scroll bar stays at the right edge of the card.
    void setContent(QWidget* content, int leftMargin);

private:
    QHBoxLayout* besideTitle_;
    QHBoxLayout* actions_;
    QVBoxLayout* column_;
};

}  // namespace ovrin
