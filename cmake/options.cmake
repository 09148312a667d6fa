# The one place for language, warnings and floating-point flags: every target links it privately.
add_library(tindelwax_options INTERFACE)
target_compile_features(tindelwax_options INTERFACE cxx_std_20)
target_compile_options(
    tindelwax_options
    INTERFACE -Wall
              -Wextra
              -Wpedantic
              -Wshadow
              -Wconversion
              -Werror
              # GCC 12 sees overlaps inside std::string's own operator+.
              $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
              # GCC 12's library deprecates functions that it calls itself.
              $<$<CXX_COMPILER_ID:Clang>:-Wno-deprecated-declarations>
              # Every processor and both widths give the same samples: SSE arithmetic or the like,
              # operations in the written order, no contraction into fused multiply-adds.
              $<IF:$<BOOL:${WASM}>,-msimd128,-msse2;-mfpmath=sse>
              -ffp-contract=off
              # 32-bit Windows hosts align the stack to 4 bytes only, and what the vector unit spills
              # needs 16.
              $<$<AND:$<BOOL:${WIN32}>,$<EQUAL:${CMAKE_SIZEOF_VOID_P},4>>:-mstackrealign>)

# A page has the whole engine at once, the smaller the better. Faults stay within its memory.
if(WASM)
    target_compile_options(tindelwax_options INTERFACE -flto -fno-exceptions -fno-rtti)
    target_link_options(tindelwax_options INTERFACE -flto LINKER:--strip-all)
    return()
endif()

# Where a fault writes past its room, a release ends instead of going on. (0.3 % more instructions for
# a render, the same samples.)
target_compile_options(
    tindelwax_options
    INTERFACE "$<$<CONFIG:Release>:-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
if(WIN32)
    target_link_options(
        tindelwax_options
        INTERFACE
        -fstack-protector-strong
        # One source, one library: neither when nor in which folder it was linked shows.
        LINKER:--no-insert-timestamp
        LINKER:--disable-auto-image-base
        LINKER:--dynamicbase
        LINKER:--nxcompat
        $<$<EQUAL:${CMAKE_SIZEOF_VOID_P},8>:LINKER:--high-entropy-va>)
else()
    target_link_options(
        tindelwax_options INTERFACE LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
endif()

# Release libraries go without symbols that only a debugger reads.
set(TINDELWAX_STRIP $<$<CONFIG:Release>:LINKER:--strip-all>)

# none, address (with undefined behaviour), thread, fuzzer (those of address, and branches that a
# fuzzer sees), or realtime: Clang's, which also holds what says that it does not block to that, and
# all that it calls.
set(TINDELWAX_SANITIZER none CACHE STRING "Sanitizers to build with")
set_property(CACHE TINDELWAX_SANITIZER PROPERTY STRINGS none address thread fuzzer realtime)
if(TINDELWAX_SANITIZER MATCHES "address|fuzzer")
    set(sanitizer_flags -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    if(TINDELWAX_SANITIZER STREQUAL fuzzer)
        list(
            APPEND
            sanitizer_flags
            -fsanitize=fuzzer-no-link
            -fsanitize-coverage-ignorelist=${PROJECT_SOURCE_DIR}/fuzz/not_traced)
    endif()
elseif(TINDELWAX_SANITIZER STREQUAL thread)
    set(sanitizer_flags -fsanitize=thread)
elseif(TINDELWAX_SANITIZER STREQUAL realtime)
    set(sanitizer_flags -fsanitize=realtime)
else()
    set(sanitizer_flags "")
endif()
target_compile_options(tindelwax_options INTERFACE ${sanitizer_flags})
target_link_options(tindelwax_options INTERFACE ${sanitizer_flags})
