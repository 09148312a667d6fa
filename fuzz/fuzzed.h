#pragma once
/// What the fuzz targets share: a target gets the fuzzer's bytes, and ends where something does not
/// hold.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t nb_bytes);

inline void require(bool holds) {
    if (!holds)
        std::abort();
}

/// A text of any length up to that, for which a few bytes are enough.
inline std::string take_text(FuzzedDataProvider& data, std::size_t max_long) {
    std::string text = data.ConsumeRandomLengthString(20);
    text.resize(data.ConsumeIntegralInRange<std::size_t>(0, max_long), 'x');
    return text;
}
