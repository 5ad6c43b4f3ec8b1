// How the process asks glibc for memory.
#pragma once

namespace lumavox {

// Blocks of any size come from the heap, and freed memory stays with the process instead of
// going back to the system at once: glibc maps every block past its threshold afresh, zeroed
// page by page on first touch, and a run that frees and allocates tables of megabytes (the
// collection's record, the rules' tag forms) would pay those page faults again and again.
void PrepararAlocador();

}  // namespace lumavox
