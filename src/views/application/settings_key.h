// Control and comma open the settings from every window of the program, as they do in others.
#pragma once

#include <QObject>
#include <functional>

namespace ovrin {

// Main thread; lives as long as the application's windows are used.
class SettingsKey final : public QObject {
    Q_OBJECT

public:
    // showSettings is called from the event of the key.
    explicit SettingsKey(std::function<void()> showSettings);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::function<void()> showSettings_;
};

}  // namespace ovrin
