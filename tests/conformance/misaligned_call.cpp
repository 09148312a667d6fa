#include "conformance/misaligned_call.h"

#if defined(__i386__)

std::uint32_t misaligned_call(std::uint32_t function, std::initializer_list<std::uint32_t> words,
                              std::uint32_t offset) {
    const std::uint32_t* first = words.begin();
    std::uint32_t nb_words = static_cast<std::uint32_t>(words.size());
    std::uint32_t result = function;
    // EDI keeps the stack pointer, which the callee preserves. The copy leaves the last argument
    // at the highest address.
    asm volatile("movl %%esp, %%edi\n\t"
                 "leal 0(,%[nb], 4), %%edx\n\t"
                 "subl %%edx, %%esp\n\t"
                 "andl $-16, %%esp\n\t"
                 "subl %[offset], %%esp\n\t"
                 "1: decl %[nb]\n\t"
                 "movl (%[first], %[nb], 4), %%edx\n\t"
                 "movl %%edx, (%%esp, %[nb], 4)\n\t"
                 "jnz 1b\n\t"
                 "call *%%eax\n\t"
                 "movl %%edi, %%esp"
                 : "+a"(result), [nb] "+c"(nb_words)
                 : [first] "S"(first), [offset] "b"(offset)
                 : "edx", "edi", "memory", "cc");
    return result;
}

#endif
