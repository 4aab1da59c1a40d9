#include "views/components/ov_scroll_area.h"

#include <QApplication>
#include <QScrollBar>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace ovrin {
namespace {

class ScrollArea : public testing::Test {
protected:
    ScrollArea() {
        area.resize(200, 100);
        area.setContent(content);
        area.show();
        grow(500);
    }
    void grow(int height) {
        content->setMinimumHeight(height);
        // The size travels up and the range down again through posted events.
        while (bar->maximum() != height - 100) QApplication::processEvents();
    }
    void userScrollsTo(int value) {
        bar->setSliderPosition(value);
        bar->triggerAction(QAbstractSlider::SliderMove);
    }

    ViewEnvironment environment;
    OVScrollArea area{environment};
    QWidget* content = new QWidget;
    QScrollBar* bar = area.verticalScrollBar();
};

TEST_F(ScrollArea, FollowsGrowingContentOnlyWhileTheUserIsAtTheBottom) {
    EXPECT_EQ(bar->value(), 0);
    grow(600);
    EXPECT_EQ(bar->value(), 0);

    area.followBottom();
    grow(700);
    EXPECT_EQ(bar->value(), 600);

    userScrollsTo(300);
    grow(800);
    EXPECT_EQ(bar->value(), 300);

    userScrollsTo(700);
    grow(900);
    EXPECT_EQ(bar->value(), 800);
}

TEST_F(ScrollArea, BringsIntoSightWhatHasJustAppeared) {
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    auto* part = new QWidget;
    for (const int height : {300, 40, 400}) {
        auto* inner = new QWidget;  // the room is asked for from layout to layout
        auto* around = new QVBoxLayout(inner);
        around->setContentsMargins(0, 0, 0, 0);
        auto* box = height == 40 ? part : new QWidget;
        box->setFixedHeight(height);
        around->addWidget(box);
        column->addWidget(inner);
    }
    part->hide();
    content->setMinimumHeight(0);
    QApplication::processEvents();
    area.followBottom();

    part->show();
    area.reveal(*part);
    QApplication::processEvents();
    const QRect seen(part->mapTo(area.viewport(), QPoint(0, 0)), part->size());
    EXPECT_EQ(seen.height(), 40);
    EXPECT_TRUE(area.viewport()->rect().contains(seen)) << seen.top();
    EXPECT_FALSE(area.isFollowing());
}

// A text that is replaced shrinks first: that is no wish to read the new one from its end.
TEST_F(ScrollArea, DoesNotTakeShrinkingContentForScrolling) {
    userScrollsTo(300);
    grow(150);
    grow(500);
    EXPECT_LE(bar->value(), 50);
    EXPECT_FALSE(area.isFollowing());
}

}  // namespace
}  // namespace ovrin
