#pragma once
/// 32-bit hosts align the stack to 4 bytes and no more; compilers of today do not, so whoever
/// wants to call like such a host has to lay out the arguments itself.

#if defined(__i386__)

#include <cstdint>
#include <initializer_list>

/// Calls a cdecl function that returns an integer, a pointer or nothing, with the stack pointer
/// `offset` bytes (a multiple of 4) below a multiple of 16 at the call.
std::uint32_t misaligned_call(std::uint32_t function, std::initializer_list<std::uint32_t> words,
                              std::uint32_t offset);

/// The same for one that returns a float.
float misaligned_float_call(std::uint32_t function, std::initializer_list<std::uint32_t> words,
                            std::uint32_t offset);

#endif
