// A vertical scroll area with a thin bar over the content's edge, which takes no width away when it appears.
//
// Content that grows can be followed: its bottom stays in sight until the user scrolls away from it, and again when
// they come back to it. Text that is selected by dragging past the edge scrolls along.
#pragma once

#include <QScrollArea>
#include <cstdint>

#include "views/components/view_environment.h"

namespace ovrin {

class OVStreamingText;

class OVScrollArea final : public QScrollArea {
    Q_OBJECT

public:
    explicit OVScrollArea(ViewEnvironment& environment, QWidget* parent = nullptr);

    // Takes ownership. The ground of the scroll area's surroundings shines through.
    void setContent(QWidget* content);
    void setWidget(QWidget* widget) = delete;  // which gives the content a ground of its own

    // Goes to the bottom and stays there from now on.
    void followBottom();
    // Goes to the top and stays there.
    void showTop();
    // Leaves what is in sight where it is, until the user goes to the bottom.
    void stopFollowing() { isFollowing_ = false; }
    bool isFollowing() const { return isFollowing_; }

    // Brings a part of the content into sight, once the changes of the present event are laid out.
    void reveal(QWidget& part);

    // Keeps the place in sight that a selection in the text is moved to.
    void keepInSight(OVStreamingText& text);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void noteUserScroll();

    bool isFollowing_ = false;
};

}  // namespace ovrin
