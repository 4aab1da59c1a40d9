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
    static constexpr double cornerRadius = 12;

    TextPane(ViewEnvironment& environment, const QString& title, QWidget* parent = nullptr);

protected:
    void addBesideTitle(QWidget* widget);
    void addAction(QWidget* control);  // at the right end of the title's row
    void setContent(QWidget* content, int leftMargin, int rightMargin);

private:
    QHBoxLayout* besideTitle_;
    QHBoxLayout* actions_;
    QVBoxLayout* column_;
};

}  // namespace ovrin
