#include "organ/fast_math.h"

#include <cpuid.h>
#include <cstdio>
#include <memory>
#include <xmmintrin.h>

namespace {

constexpr unsigned edx_sse = 1u << 25;                 ///< of leaf 1
constexpr unsigned mxcsr_flush_to_zero = 0x8000u;      ///< results
constexpr unsigned mxcsr_denormals_are_zero = 0x0040u; ///< operands

} // namespace

void cpuid(unsigned info, unsigned* eax, unsigned* ebx, unsigned* ecx, unsigned* edx) {
    __cpuid_count(info, 0, *eax, *ebx, *ecx, *edx);
}

void dump_cpuid() {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen("cpuid.txt", "w"),
                                                               std::fclose);
    for (unsigned leaf = 0; leaf <= 5; ++leaf) {
        unsigned eax, ebx, ecx, edx;
        cpuid(leaf, &eax, &ebx, &ecx, &edx);
        for (std::FILE* out : {stdout, file.get()})
            if (out)
                std::fprintf(out, "%i: %#x %#x %#x %#x\n", static_cast<int>(leaf), eax, ebx, ecx,
                             edx);
    }
}

bool has_sse() {
    unsigned eax, ebx, ecx, edx;
    cpuid(1, &eax, &ebx, &ecx, &edx);
    return (edx & edx_sse) != 0;
}

void flush_denormals() noexcept {
    _mm_setcsr(_mm_getcsr() | mxcsr_flush_to_zero | mxcsr_denormals_are_zero);
}
