// Linked into every program that is built with sanitizers: where their reports go, and what they are to leave out of
// libraries that are not instrumented. Our own accesses stay checked.
#include <cerrno>
#include <string_view>

#include <dlfcn.h>

// Into a folder of the build, because nobody reads what a program writes that a test has started. Each report is a file
// named after the program and its process.
#define REPORTS "log_path=" OVRIN_SANITIZER_REPORTS "/report:log_exe_name=1:print_suppressions=0"

extern "C" const char* __asan_default_options() {  // NOLINT(bugprone-reserved-identifier)
    return REPORTS;
}

extern "C" const char* __ubsan_default_options() {  // NOLINT(bugprone-reserved-identifier)
    return REPORTS ":print_stacktrace=1";
}

// Beside the address sanitizer, the one for undefined behaviour keeps a path of its own, which its options do not set.
__attribute__((constructor)) static void setPathOfUndefinedBehaviour() {
    void* const library = dlopen("libubsan.so.1", RTLD_NOLOAD | RTLD_NOW);
    if (library == nullptr) return;
    void* const setPath = dlsym(library, "__sanitizer_set_report_path");
    reinterpret_cast<void (*)(const char*)>(setPath)(OVRIN_SANITIZER_REPORTS "/report");
}

extern "C" const char* __tsan_default_options() {  // NOLINT(bugprone-reserved-identifier)
    return REPORTS;
}

// The thread sanitizer does not see their locks and takes what they hand from thread to thread for races: events that
// are posted to the main loop, what the threads of the image library have read for the one that waits for them, and all
// that the inference runtime does.
extern "C" const char* __tsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
    return "race:QEvent::type\n"
           "race:recognition/parallel.h\n"
           "race:libonnxruntime.so\n"
           "race:libQt6WaylandClient.so\n"
           "mutex:libQt6WaylandClient.so\n"
           "mutex:wl_event_queue_destroy\n"  // of the toolkit's last queue, after its connection
           "called_from_lib:libQt6Core.so\n"
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

// What fontconfig keeps for the window toolkit until the process ends, and what the toolkit leaves of its connection to
// a Wayland compositor. Who asked Wayland's library for the memory is not seen, which keeps no frame pointers (the
// option fast_unwind_on_malloc=0 tells): the connections of our own are checked in the tests, which have no other.
extern "C" const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
    const bool isTest = std::string_view(program_invocation_short_name).starts_with("test_");
    return isTest ? "leak:libfontconfig.so\n" : "leak:libfontconfig.so\nleak:libwayland-client.so\n";
}
