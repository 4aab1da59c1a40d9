#include "platform/linux/desktop/picture_memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include "base/error.h"

namespace ovrin {

PictureMemory::PictureMemory(std::size_t size)
    : size_(size), descriptor_(::memfd_create("ovrin-screenshot", MFD_CLOEXEC)) {
    const bool hasRoom = descriptor_ >= 0 && ::ftruncate(descriptor_, static_cast<off_t>(size)) == 0;
    data_ = hasRoom ? ::mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor_, 0) : MAP_FAILED;
    if (data_ != MAP_FAILED) return;
    if (descriptor_ >= 0) ::close(descriptor_);
    throw Error("无法截取屏幕：内存不足。");
}

PictureMemory::~PictureMemory() {
    ::munmap(data_, size_);
    ::close(descriptor_);
}

int PictureMemory::duplicated() const {
    return ::dup(descriptor_);
}

}  // namespace ovrin
