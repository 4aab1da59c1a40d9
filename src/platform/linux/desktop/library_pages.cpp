#include "platform/linux/desktop/library_pages.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

namespace ovrin {

namespace {

std::string_view fileName(const char* path) {
    const std::string_view whole(path == nullptr ? "" : path);
    return whole.substr(whole.rfind('/') + 1);  // all of it where there is no slash
}

// Only what cannot have been written to: the rest would come back as it was in the file.
void giveBack(const dl_phdr_info& library) {
    const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    for (ElfW(Half) i = 0; i < library.dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = library.dlpi_phdr[i];
        if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W) != 0) continue;
        const std::uintptr_t begin = (library.dlpi_addr + segment.p_vaddr) / pageSize * pageSize;
        const std::uintptr_t end = library.dlpi_addr + segment.p_vaddr + segment.p_memsz;
        auto* const pages = reinterpret_cast<void*>(begin);  // NOLINT(performance-no-int-to-ptr): told as a number
        madvise(pages, end - begin, MADV_DONTNEED);
    }
}

}  // namespace

void giveBackPagesOfLibraries(std::span<const std::string_view> names) {
    const auto visit = [](dl_phdr_info* library, std::size_t /*size*/, void* data) {
        const auto& wanted = *static_cast<std::span<const std::string_view>*>(data);
        const std::string_view name = fileName(library->dlpi_name);
        if (std::ranges::any_of(wanted, [name](std::string_view start) { return name.starts_with(start); })) {
            giveBack(*library);
        }
        return 0;
    };
    dl_iterate_phdr(visit, &names);
}

}  // namespace ovrin
