#include "vst/host_text.h"

#include <algorithm>
#include <cstddef>

void vst_strncpy(char* text, std::string_view source, VstInt32 maxLen) noexcept {
    if (text == nullptr || maxLen < 0)
        return;
    const auto capacity = static_cast<std::size_t>(maxLen);
    const std::size_t length = source.copy(text, capacity);
    std::fill(text + length, text + capacity + 1, '\0');
}
