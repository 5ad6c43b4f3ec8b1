#include "base/memoria.h"

#include <malloc.h>

namespace lumavox {

void PrepararAlocador() {
  // A full station's largest single block is a few megabytes; the heap is trimmed only past
  // what a full run may free at once.
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
  mallopt(M_TRIM_THRESHOLD, 64 << 20);
}

}  // namespace lumavox
