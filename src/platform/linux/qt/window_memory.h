// Gives back the pages of fonts and text libraries once no window is on the screen any more. They come back from the
// page cache when a window is shown again.
//
// A Chinese font of which some glyphs were drawn would otherwise count for the rest of the session: measured on
// Debian 12, Noto Sans CJK takes 7 MB and ICU 4 MB after the history window was shown once.
#pragma once

#include <QObject>
#include <QTimer>
#include <functional>

namespace ovrin {

class WindowMemory final : public QObject {
public:
    // In the main thread of the application, before which it must go. hasWindows: whether any is on the screen.
    explicit WindowMemory(std::function<bool()> hasWindows);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QTimer afterClosing_;
};

}  // namespace ovrin
