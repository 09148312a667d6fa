#include "organ/fast_math.h"

#include "tests/organ/two_manual_organ.h"
#include "tests/temporary_folder.h"

#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <xmmintrin.h>

namespace {

TEST(FastMath, EveryBlockFlushesDenormalsForGood) {
    const unsigned before = _mm_getcsr();
    const two_manual_organ twin;
    twin.start();
    _mm_setcsr(before & ~0x8040u);
    (void)twin.render();
    const unsigned after = _mm_getcsr();
    volatile float denormal = 1e-38f;
    denormal = denormal * 0.01f;
    const float product = denormal;
    _mm_setcsr(before);
    EXPECT_EQ(after, before | 0x8040u);
    EXPECT_EQ(product, 0.0f);
}

/// What dump_cpuid prints with a folder as the current directory.
std::string dump_in(const temporary_folder& folder) {
    const auto left = std::filesystem::current_path();
    std::filesystem::current_path(folder.path);
    testing::internal::CaptureStdout();
    dump_cpuid();
    std::filesystem::current_path(left);
    return testing::internal::GetCapturedStdout();
}

TEST(FastMath, DumpsSixLeavesToOutputAndFile) {
    const temporary_folder folder;
    const std::string printed = dump_in(folder);
    unsigned eax, ebx, ecx, edx;
    cpuid(0, &eax, &ebx, &ecx, &edx); // the later leaves tell on which core they ran
    char line[80];
    std::snprintf(line, sizeof line, "0: %#x %#x %#x %#x\n1: ", eax, ebx, ecx, edx);
    EXPECT_EQ(printed.substr(0, std::strlen(line)), line);
    EXPECT_EQ(std::ranges::count(printed, '\n'), 6);
    EXPECT_EQ(file_content(folder / "cpuid.txt"), printed);

    std::filesystem::remove(folder / "cpuid.txt");
    std::filesystem::create_directory(folder / "cpuid.txt"); // a file that cannot be opened
    EXPECT_EQ(std::ranges::count(dump_in(folder), '\n'), 6);
}

} // namespace
