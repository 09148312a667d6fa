#pragma once
/// Text helpers of the configuration reader. White space is blank, tab, LF, VT, FF and CR, whatever
/// the host's locale, which nothing here follows. Functions are [any].

#include <cstddef>

constexpr std::size_t ini_max_line = 200; ///< bytes of a line with its terminating zero

/// Copies the next line, without its LF, into `target` of ini_max_line bytes and advances `stream`
/// and `nb_chars`. Returns `target`; or null, having printed "EOF" at the text's end (a last line
/// without LF counts as the end) or "ERROR" at a line that does not fit. `size` is not consulted.
char* fgets_memory(char* target, int size, const char** stream, unsigned* nb_chars);

bool ini_is_space(char c);

char* rstrip(char* s); ///< removes trailing white space in place
char* lskip(char* s);  ///< the first character that is not white space

/// Returns the first `c`, or ';' right after white space, or the terminating zero.
char* find_char_or_comment(char* s, char c);

/// Compares names without regard to the case of ASCII letters.
bool ini_equals(const char* left, const char* right);

/// Read a decimal number up to the first other character, with leading white space and a sign; 0
/// for text without digits. Integers saturate, the decimal point is a point.
int ini_integer(const char* text);
float ini_decimal(const char* text);

/// Copies at most size - 1 characters and terminates.
char* strncpy0(char* dest, const char* src, std::size_t size);
