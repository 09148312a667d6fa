#pragma once
/// What the engine asks of the processor: whether it has SSE, and that arithmetic on denormals,
/// which is slow, does not happen. In WebAssembly it has what counts as SSE, and denormals happen.

#include "realtime/nonblocking.h"

/// Executes CPUID with leaf `info` (subleaf 0), where there is one. [any]
void cpuid(unsigned info, unsigned* eax, unsigned* ebx, unsigned* ecx, unsigned* edx);

/// Writes leaves 0 to 5 to the standard output and to "cpuid.txt" in the current directory, where
/// that can be opened. [setup]
void dump_cpuid();

[[nodiscard]] bool has_sse(); ///< [any]

/// Sets flush-to-zero and denormals-are-zero on the calling thread, for good. [audio]
void flush_denormals() noexcept NONBLOCKING;
