// Linked into every test program that is built with the thread sanitizer. These libraries are not instrumented: it does
// not see their locks and takes what they hand from thread to thread for races. Only what they do themselves is left
// out; our own accesses stay checked.
extern "C" const char* __tsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
    return "called_from_lib:libQt6Core.so\n"
           "called_from_lib:libQt6DBus.so\n"
           "called_from_lib:libQt6Gui.so\n"
           "called_from_lib:libQt6Widgets.so\n"
           "called_from_lib:libdbus-1.so\n"
           "called_from_lib:libgio-2.0.so\n"
           "called_from_lib:libglib-2.0.so\n"
           "called_from_lib:libgobject-2.0.so\n"
           "called_from_lib:libsecret-1.so\n"
           "race:libgio-2.0.so\n"
           "race:libglib-2.0.so\n";
}
