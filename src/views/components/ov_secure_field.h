// A field for a secret, with a button that shows it. What is hidden leaves by no way: neither by copying nor as the
// primary selection. It is hidden again once the keyboard has gone elsewhere, or the field from the screen.
#pragma once

#include "views/components/ov_widget.h"

namespace ovrin {

class OVIconButton;
class OVTextField;

class OVSecureField final : public OVWidget {
    Q_OBJECT

public:
    // showLabel names the button.
    OVSecureField(ViewEnvironment& environment, const QString& placeholder, const QString& showLabel,
                  QWidget* parent = nullptr);

    OVTextField& field() { return *field_; }
    bool isShown() const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void show(bool isShown);
    void hideUnlessFocused();

    OVTextField* field_;
    OVIconButton* eye_;
};

}  // namespace ovrin
