// The program's buttons: OVButton with a text (and perhaps an icon), OVIconButton with a glyph alone.
#pragma once

#include <QAbstractButton>
#include <cstdint>
#include <optional>

#include "theme/ov_icon.h"
#include "views/components/spring_animation.h"
#include "views/components/view_environment.h"

namespace ovrin {

// What both have in common: the spring of a press, hover, a focus ring for the keyboard, and that Return presses it as
// Space does.
class OVButtonBase : public QAbstractButton {
    Q_OBJECT

public:
    OVButtonBase(ViewEnvironment& environment, QWidget* parent);

protected:
    ViewEnvironment& environment() const { return environment_; }
    // 0 at rest, 1 fully pressed.
    double pressProgress() const { return press_.value(); }
    bool isHovered() const { return underMouse() && isEnabled(); }
    void drawFocusRing(QPainter& painter, double radius, theme::ColorToken color = theme::ColorToken::accent) const;

    void keyPressEvent(QKeyEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    ViewEnvironment& environment_;
    SpringAnimation press_;
};

class OVButton final : public OVButtonBase {
    Q_OBJECT

public:
    enum class Kind : std::uint8_t { primary, secondary, ghost, danger };
    enum class Density : std::uint8_t { regular, compact };

    OVButton(ViewEnvironment& environment, const QString& text, Kind kind, Density density = Density::regular,
             QWidget* parent = nullptr);

    void setOVIcon(std::optional<OVIcon> icon);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Look {
        QColor background;
        QColor text;
    };
    Look look() const;
    double height() const { return density_ == Density::compact ? 28 : 34; }
    double padding() const { return density_ == Density::compact ? 10 : 14; }

    Kind kind_;
    Density density_;
    std::optional<OVIcon> icon_;
};

// 28 x 28 points with a 12-point glyph.
class OVIconButton final : public OVButtonBase {
    Q_OBJECT

public:
    // label is its name for assistive technology and its tooltip.
    OVIconButton(ViewEnvironment& environment, OVIcon icon, const QString& label, QWidget* parent = nullptr);

    void setOVIcon(OVIcon icon);
    void setLabel(const QString& label);
    QSize sizeHint() const override { return {28, 28}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    OVIcon icon_;
};

}  // namespace ovrin
