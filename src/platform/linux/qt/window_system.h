// Which window system the toolkit speaks to, decided once before it starts: natively to a compositor that puts windows
// where programs want them and hands the clipboard to all of them; else X11, also that which a Wayland session has for
// X11 programs.
#pragma once

#include <QStringList>

namespace ovrin {

// Sets the toolkit's environment, but for what the user has set there. Before the QApplication and any other thread.
// Throws Error, which says how to go on, where there is no display: the toolkit would end the program in its own way.
void chooseWindowSystem();

// The variables that chooseWindowSystem() has set. They are not for the programs that this one starts, which may not be
// able to run as they say. Main thread.
const QStringList& ownToolkitVariables();

// Whether windows are native to a Wayland compositor: as it was chosen, or would be. Waits for the compositor; any
// thread.
bool hasNativeWindows();

}  // namespace ovrin
