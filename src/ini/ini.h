#pragma once
/// The configuration reader turns a named text into handler calls, one a setting, in the order of
/// the text. A regular file of that name, relative to the host's current directory, takes
/// precedence over the text compiled in under it. Functions are [setup].
///
/// Syntax: "[section]" headers; "name=value" or "name:value"; lines that begin with '#' or ';' are
/// comments, and so is what follows a ';' after a blank; an indented line continues the setting
/// before it and is handed on as a further value of its name. A line holds at most 199 characters
/// and ends with LF or CR LF.

#include <string>
#include <vector>

struct ini_data {
    std::string filename; ///< the name asked for
    unsigned data_len;
    std::vector<char> p_data; ///< data_len bytes, no terminator
};

/// Called with strings that are valid during the call only. Returns 0 to refuse the setting.
using ini_handler = int (*)(void* user, const char* section, const char* name, const char* value);

/// Returns the file of that name, else the compiled-in text whose name begins with it, else null.
/// Free with ini_data_free.
[[nodiscard]] ini_data* ini_load_data(const char* filename);

/// Returns null when there is no regular file of that name, or it cannot be opened or is larger
/// than 16 MiB; or when, on POSIX, somebody else could have put it there, which a line on the
/// standard output says.
[[nodiscard]] ini_data* ini_load_data_from_file(const char* filename);

[[nodiscard]] ini_data* ini_load_data_from_memory(const char* filename, const char* p_data,
                                                  unsigned data_len);

/// Returns a copy of a compiled-in text; the bytes pass unchanged.
[[nodiscard]] std::vector<char> ini_decipher_data(const unsigned char* p_data, unsigned data_len);

void ini_data_free(ini_data* p_ini_data); ///< null is allowed

/// Calls `handler` for every setting. Returns 0, or the number (from 1) of the first line that was
/// malformed or refused, or -1 without a text. Prints "EOF" at the text's end, or "ERROR" at a line
/// that is too long, which ends the parse. A last line without its line end is not read.
int ini_parse(const ini_data* p_ini_data, ini_handler handler, void* user);
