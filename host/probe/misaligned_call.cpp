#include "probe/misaligned_call.h"

#if defined(__i386__)

namespace {

/// A cdecl function like any other to its callers: they count on no register that a callee may
/// change, SSE, MMX or x87, and find the result where the callee leaves it, in EAX or on the x87
/// stack. EBP and ESI keep what the callee preserves. The copy leaves the last argument at the
/// highest address.
template <typename Result>
[[gnu::naked, gnu::noipa]] Result call(std::uint32_t /*function*/, const std::uint32_t* /*words*/,
                                       std::uint32_t /*nb_words*/, std::uint32_t /*offset*/) {
    asm("pushl %ebp\n\t"
        "movl %esp, %ebp\n\t"
        "pushl %esi\n\t"
        "movl 12(%ebp), %esi\n\t"
        "movl 16(%ebp), %ecx\n\t"
        "leal 0(, %ecx, 4), %edx\n\t"
        "subl %edx, %esp\n\t"
        "andl $-16, %esp\n\t"
        "subl 20(%ebp), %esp\n\t"
        "1: decl %ecx\n\t"
        "movl (%esi, %ecx, 4), %edx\n\t"
        "movl %edx, (%esp, %ecx, 4)\n\t"
        "jnz 1b\n\t"
        "call *8(%ebp)\n\t"
        "movl -4(%ebp), %esi\n\t"
        "leave\n\t"
        "ret");
}

} // namespace

std::uint32_t misaligned_call(std::uint32_t function, std::initializer_list<std::uint32_t> words,
                              std::uint32_t offset) {
    return call<std::uint32_t>(function, words.begin(), words.size(), offset);
}

float misaligned_float_call(std::uint32_t function, std::initializer_list<std::uint32_t> words,
                            std::uint32_t offset) {
    return call<float>(function, words.begin(), words.size(), offset);
}

#endif
