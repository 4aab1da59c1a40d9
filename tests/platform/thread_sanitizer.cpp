// GLib and what is built on it are not instrumented: the thread sanitizer does not see their locks and takes what they
// hand from thread to thread for races. Only what they do themselves is left out; our own accesses stay checked.
#if defined(__SANITIZE_THREAD__)

extern "C" const char* __tsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
    return "called_from_lib:libglib-2.0.so\n"
           "called_from_lib:libgobject-2.0.so\n"
           "called_from_lib:libgio-2.0.so\n"
           "called_from_lib:libsecret-1.so\n"
           "race:libglib-2.0.so\n"
           "race:libgio-2.0.so\n";
}

#endif
