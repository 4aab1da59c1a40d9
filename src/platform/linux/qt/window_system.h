// Which window system the toolkit speaks to, decided once before it starts: natively to a compositor that puts windows
// where programs want them and hands the clipboard to all of them; else X11, also that which a Wayland session has for
// X11 programs.
#pragma once

#include <QStringList>
#include <memory>

namespace ovrin {

class WaylandConnection;

// Sets the toolkit's environment, but for what the user has set there. Before the QApplication and any other thread.
// Returns the connection that the compositor was asked through; null outside of a Wayland session, or where none
// answers. Throws Error, which says how to go on, where there is no display: the toolkit would end the program in its
// own way.
std::unique_ptr<WaylandConnection> chooseWindowSystem();

// The variables that chooseWindowSystem() has set. They are not for the programs that this one starts, which may not be
// able to run as they say. Main thread.
const QStringList& ownToolkitVariables();

// Whether windows are native to a Wayland compositor: as it was chosen, or would be. Waits for the compositor; any
// thread.
bool hasNativeWindows();

}  // namespace ovrin
