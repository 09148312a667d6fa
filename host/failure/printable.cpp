#include "failure/printable.h"

#include <array>
#include <cstdio>

namespace {

/// Of ASCII, or of those that UTF-8 writes in two bytes, 0xC2 and this.
bool is_control(unsigned char before, unsigned char byte) {
    return byte < 0x20 || byte == 0x7F || (before == 0xC2 && byte >= 0x80 && byte < 0xA0);
}

} // namespace

std::string printable(const std::string& text) {
    std::string shown;
    unsigned char before = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        std::array<char, 8> escaped{};
        std::snprintf(escaped.data(), escaped.size(), "\\x%02X", byte);
        is_control(before, byte) ? shown += escaped.data() : shown += c;
        before = byte;
    }
    return shown;
}
