#include "ini/ini_text.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdio>
#include <cstring>
#include <system_error>

namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

const char* number_start(const char* text) {
    while (ini_is_space(*text))
        ++text;
    return *text == '+' ? text + 1 : text;
}

} // namespace

char* fgets_memory(char* target, int /*size*/, const char** stream, unsigned* nb_chars) {
    for (std::size_t i = 0; *nb_chars > 0;) {
        const char c = *(*stream)++;
        --*nb_chars;
        if (c == '\n') {
            target[i] = '\0';
            return target;
        }
        target[i++] = c;
        if (i == ini_max_line) {
            std::puts("ERROR");
            return nullptr;
        }
    }
    std::puts("EOF");
    return nullptr;
}

bool ini_is_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

char* rstrip(char* s) {
    char* end = s + std::strlen(s);
    while (end > s && ini_is_space(end[-1]))
        --end;
    *end = '\0';
    return s;
}

char* lskip(char* s) {
    while (ini_is_space(*s))
        ++s;
    return s;
}

char* find_char_or_comment(char* s, char c) {
    bool after_space = false;
    while (*s && *s != c && !(after_space && *s == ';')) {
        after_space = ini_is_space(*s);
        ++s;
    }
    return s;
}

bool ini_equals(const char* left, const char* right) {
    while (*left && lower(*left) == lower(*right)) {
        ++left;
        ++right;
    }
    return lower(*left) == lower(*right);
}

int ini_integer(const char* text) {
    text = number_start(text);
    int value = 0;
    const auto result = std::from_chars(text, text + std::strlen(text), value);
    if (result.ec == std::errc::result_out_of_range)
        return *text == '-' ? INT_MIN : INT_MAX;
    return value;
}

float ini_decimal(const char* text) {
    text = number_start(text);
    double value = 0;
    std::from_chars(text, text + std::strlen(text), value);
    return static_cast<float>(value);
}

char* strncpy0(char* dest, const char* src, std::size_t size) {
    if (size == 0)
        return dest;
    const std::size_t len = std::min(std::strlen(src), size - 1);
    std::memcpy(dest, src, len);
    dest[len] = '\0';
    return dest;
}
