// Programs that are started for the user. A Wayland compositor lets their windows come to the front by a token that the
// program gets on its way, which the toolkit does not see to. Main thread.
#pragma once

class QProcessEnvironment;
class QString;
class QUrl;

namespace ovrin {

// A fresh token, for one program; empty where none is needed, and where none is given because no window of ours has
// the keyboard.
QString freshActivationToken();

// The environment of a program: what the user has set, with such a token.
QProcessEnvironment environmentOfStartedProgram();

// Opens the address in the program that the user has chosen for such addresses.
void openURL(const QUrl& url);

}  // namespace ovrin
