#include "views/components/ov_picker.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPointer>

#include <gtest/gtest.h>

#include "views/components/ov_menu.h"

namespace ovrin {
namespace {

class Picker : public testing::Test {
protected:
    Picker() {
        QObject::connect(&picker, &OVPicker::picked, &picker, [this](const QString& value) { picked = value; });
        picker.show();
    }
    // The open menu.
    OVMenu* menu() const { return qobject_cast<OVMenu*>(QApplication::activePopupWidget()); }
    static void press(QWidget& widget, int key) {
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&widget, &down);
        QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
        QApplication::sendEvent(&widget, &up);
    }

    ViewEnvironment environment;
    OVPicker picker{environment, "Language", {{"en", "English"}, {"ja", "日本語"}, {"fr", "Français"}}};
    QString picked;
};

TEST_F(Picker, IsOperatedByTheKeyboardFromTheCurrentOptionOn) {
    picker.setCurrent({.value = "ja", .title = "日本語"});
    EXPECT_EQ(picker.accessibleName(), "Language：日本語");
    for (const int key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_Return, Qt::Key_Space}) {
        press(picker, key);
        ASSERT_NE(menu(), nullptr) << key;
        EXPECT_EQ(menu()->activeAction()->text(), "日本語");
        press(*menu(), Qt::Key_Escape);
        EXPECT_EQ(menu(), nullptr);
        EXPECT_EQ(picked, "");
    }
    press(picker, Qt::Key_Down);
    const QPointer<OVMenu> last = menu();
    press(*menu(), Qt::Key_Down);
    press(*menu(), Qt::Key_Return);
    EXPECT_EQ(picked, "fr");
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(last);
}

TEST_F(Picker, ShowsWhatIsNoneOfItsOptionsAndMarksNothingThen) {
    const QSize size = picker.sizeHint();
    picker.setCurrent({.value = "it", .title = "Italian"});
    EXPECT_EQ(picker.accessibleName(), "Language：Italian");
    press(picker, Qt::Key_Down);
    for (const QAction* const item : menu()->actions()) EXPECT_FALSE(item->isChecked());
    press(*menu(), Qt::Key_Escape);
    // Its neighbours stay where they are, unless there is a name of uncommon length; that is cut at some point.
    EXPECT_EQ(picker.sizeHint(), size);
    picker.setCurrent({.value = "x", .title = QString(500, 'x')});
    EXPECT_LT(picker.sizeHint().width(), 200);
}

}  // namespace
}  // namespace ovrin
