#include "views/components/ov_panel_window.h"

#include <QApplication>
#include <QPointer>
#include <QPushButton>

#include <gtest/gtest.h>

namespace ovrin {
namespace {

TEST(OVPanelWindow, ContentMayReplaceItselfFromInsideItsOwnEvent) {
    ViewEnvironment environment;
    OVPanelWindow window(environment, {}, {460, 460}, {420, 400});
    window.show();
    const QPointer<QPushButton> first = new QPushButton;
    auto* const second = new QWidget;
    bool isThereAfterwards = false;
    QObject::connect(first, &QPushButton::clicked, &window, [&] {
        window.setContent(second);
        isThereAfterwards = first && !first->isVisible();
    });
    window.setContent(first);
    EXPECT_TRUE(first->isVisible());
    QMetaObject::invokeMethod(first, &QPushButton::click, Qt::QueuedConnection);
    QApplication::processEvents();
    EXPECT_TRUE(isThereAfterwards);
    EXPECT_TRUE(second->isVisible());
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());
}

}  // namespace
}  // namespace ovrin
