// Linked into every test program that is built with sanitizers: what they are to leave out of libraries that are not
// instrumented. Our own accesses stay checked.

// The thread sanitizer does not see their locks and takes what they hand from thread to thread for races.
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

// What fontconfig keeps for the window toolkit until the process ends.
extern "C" const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
    return "leak:libfontconfig.so\n";
}
