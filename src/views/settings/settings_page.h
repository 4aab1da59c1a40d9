// A page of the settings window: its title and subtitle, cards that scroll below them, and at the bottom a bar for what
// the page does as a whole, which stays where it is.
#pragma once

#include "views/components/ov_widget.h"

class QHBoxLayout;
class QVBoxLayout;

namespace ovrin {

class OVScrollArea;

class SettingsPage : public OVWidget {
    Q_OBJECT

public:
    enum class Content : std::uint8_t {
        fromTop,  // one card below the other
        centred
    };

    SettingsPage(ViewEnvironment& environment, const QString& title, const QString& subtitle,
                 Content content = Content::fromTop, QWidget* parent = nullptr);

    // All take ownership.
    void add(QWidget* card);
    // Between the cards and the bar, over the whole width. It takes its room from the cards' view when it appears: what
    // is in sight stays where it is.
    void addAboveBar(QWidget* note);
    // The bar at the bottom, made on first use.
    QHBoxLayout& bar();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout& bottom();

    QVBoxLayout* column_;
    OVScrollArea* scrollArea_;
    QVBoxLayout* cards_;
    QVBoxLayout* bottom_ = nullptr;
    QHBoxLayout* bar_ = nullptr;
};

}  // namespace ovrin
