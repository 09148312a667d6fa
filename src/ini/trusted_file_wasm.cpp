#include "ini/trusted_file.h"

std::optional<std::string> trusted_path(const char*) { return std::nullopt; }
