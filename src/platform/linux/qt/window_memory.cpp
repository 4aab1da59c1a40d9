#include "platform/linux/qt/window_memory.h"

#include <QApplication>
#include <QWidget>
#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>

#include <sys/mman.h>

#include "platform/linux/desktop/library_pages.h"

namespace ovrin {

namespace {

constexpr int pauseAfterClosing = 1500;  // milliseconds: who closes one window often opens another

bool isFontFile(std::string_view path) {
    constexpr auto endings = std::to_array<std::string_view>({".ttc", ".ttf", ".otf"});
    return std::ranges::any_of(endings, [path](std::string_view ending) { return path.ends_with(ending); });
}

// Fonts are mapped for reading only, so that nothing is lost with the pages.
void giveBackPagesOfFonts() {
    std::ifstream mappings("/proc/self/maps");
    for (std::string line; std::getline(mappings, line);) {
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        std::array<char, 5> rights{};
        const int read = std::sscanf(line.c_str(), "%" SCNxPTR "-%" SCNxPTR " %4s", &begin, &end, rights.data());
        const bool isReadOnly = read == 3 && rights[1] == '-';
        if (!isReadOnly || !isFontFile(line)) continue;
        auto* const pages = reinterpret_cast<void*>(begin);  // NOLINT(performance-no-int-to-ptr): read as a number
        madvise(pages, end - begin, MADV_DONTNEED);
    }
}

}  // namespace

WindowMemory::WindowMemory(std::function<bool()> hasWindows) {
    afterClosing_.setSingleShot(true);
    afterClosing_.setInterval(pauseAfterClosing);
    connect(&afterClosing_, &QTimer::timeout, this, [hasWindows = std::move(hasWindows)] {
        if (hasWindows()) return;
        giveBackPagesOfFonts();
        constexpr auto libraries = std::to_array<std::string_view>({"libicudata.so", "libicui18n.so", "libicuuc.so"});
        giveBackPagesOfLibraries(libraries);
    });
    qApp->installEventFilter(this);
}

bool WindowMemory::eventFilter(QObject* watched, QEvent* event) {
    const bool isHidden = event->type() == QEvent::Hide && watched->isWidgetType();
    if (isHidden && static_cast<QWidget*>(watched)->isWindow()) afterClosing_.start();  // NOLINT: its type says so
    return QObject::eventFilter(watched, event);
}

}  // namespace ovrin
