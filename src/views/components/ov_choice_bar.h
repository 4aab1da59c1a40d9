// Some buttons of which one is chosen, with a highlight that moves to that one: segmented controls, filters, the pages
// of a sidebar.
//
// To the keyboard and to assistive technology they are a group of radio buttons: Tab comes to the chosen one, the arrow
// keys, Home and End choose among them. The wheel is left to what lies below.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "theme/ov_icon.h"
#include "views/components/ov_widget.h"
#include "views/components/spring_animation.h"

namespace ovrin {

class OVChoiceBar final : public OVWidget {
    Q_OBJECT

public:
    struct Choice {
        QString title;
        std::optional<OVIcon> icon = {};
        QString picture = {};  // the file of a vector picture, for the look of that name
    };
    enum class Look : std::uint8_t {
        segments,  // side by side on a track, all of one width
        filters,   // side by side, each as wide as it has to be
        sidebar,   // one above the other, as wide as there is room
        pictures   // side by side, large, each with a picture above its title
    };

    // label names the group; each button carries it in its accessible name, as in "主题：浅色". It may be empty where
    // the titles say it all.
    OVChoiceBar(ViewEnvironment& environment, const QString& label, const std::vector<Choice>& choices, Look look,
                QWidget* parent = nullptr);

    // An index into the choices; 0 at first. Tells nobody.
    void setCurrent(int index);
    int current() const { return current_; }

    // Gives the keyboard to the chosen one.
    void focusCurrent();

signals:
    // The user has chosen another one, which is current now.
    void chosen(int index);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Item;

    void choose(int index);
    bool handleKey(int key);
    QRectF highlight() const;

    Look look_;
    std::vector<Item*> items_;
    int current_ = 0;
    SpringAnimation position_;  // of the highlight, as an index that may lie between two
};

}  // namespace ovrin
