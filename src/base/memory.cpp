#include "base/memory.h"

#include <malloc.h>

namespace ovrin {

void giveBackUnusedMemory() {
    malloc_trim(0);
}

}  // namespace ovrin
