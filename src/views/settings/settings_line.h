// The quiet second line of a setting: a hint that is always there, a note about where the value stands, or in their
// place what is wrong with it.
#pragma once

#include "views/components/ov_label.h"
#include "views/components/ov_widget.h"

namespace ovrin {

class OVAnimatedIcon;
class OVStreamingText;

class SettingsLine final : public OVWidget {
    Q_OBJECT

public:
    enum class Place : std::uint8_t {
        asNeeded,  // takes room while there is something to say
        reserved   // always takes the room of one line, so that nothing moves
    };

    SettingsLine(ViewEnvironment& environment, QString hint, Place place, QWidget* parent = nullptr);

    void setHint(const QString& hint);
    void setNote(const QString& note);
    // Shown in place of the rest until it is empty; Tab reaches it, and it can be selected and copied.
    void setError(const QString& error);

    // All that is shown, for the description of the control.
    QString words() const;
    // What has the keyboard when Tab comes to the error.
    QWidget& errorText() const;

signals:
    void changed();

private:
    void refresh();

    QString hint_;
    QString note_;
    QString error_;
    Place place_;
    OVAnimatedIcon* warning_;
    OVLabel* label_;
    OVStreamingText* errorText_;
};

}  // namespace ovrin
