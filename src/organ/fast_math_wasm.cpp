/// WebAssembly rounds as SSE does on every processor, and has nothing to ask or to set.

#include "organ/fast_math.h"

void dump_cpuid() {}

bool has_sse() { return true; }

void flush_denormals() noexcept {}
