// A one-line field on the control background: search fields and composers.
#pragma once

#include <QLineEdit>
#include <optional>

#include "theme/ov_icon.h"
#include "theme/type_scale.h"
#include "views/components/view_environment.h"

namespace ovrin {

class OVTextField final : public QLineEdit {
    Q_OBJECT

public:
    enum class Background : std::uint8_t { control, none };

    OVTextField(ViewEnvironment& environment, const QString& placeholder, QWidget* parent = nullptr);

    void setLeadingIcon(OVIcon icon);
    void setFontStyle(const theme::FontStyle& style);
    void setBackground(Background background);
    // Keeps the text off the right edge, where something lies over the field.
    void setRightInset(int points);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void applyColors();

    ViewEnvironment& environment_;
    std::optional<OVIcon> icon_;
    Background background_ = Background::control;
};

}  // namespace ovrin
