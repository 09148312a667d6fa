#pragma once
/// The command's own words on standard output.

#include <cstdio>
#include <string>

/// Writes and flushes; throws a failure where that does not work, as with a null stream, which
/// stands for one that is closed.
void print(std::FILE* p_output, const std::string& text);
