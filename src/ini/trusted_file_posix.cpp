#include "ini/trusted_file.h"

#include <cstdlib>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// A link's mode says nothing; who could put another in its place, its folder's does.
bool is_trusted(const std::string& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0 || (status.st_uid != 0 && status.st_uid != geteuid()))
        return false;
    return S_ISLNK(status.st_mode) || (status.st_mode & (S_IWGRP | S_IWOTH)) == 0
           || (S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX) != 0);
}

bool is_trusted_all_the_way(const std::string& path) {
    for (auto end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1))
        if (!is_trusted(path.substr(0, end)))
            return false;
    return is_trusted("/") && is_trusted(path);
}

} // namespace

/// The way as it is named, on which links lie, and the one that it comes to.
bool is_trusted_file(const char* filename) {
    const std::unique_ptr<char, void (*)(void*)> resolved(realpath(filename, nullptr), std::free);
    return resolved && is_trusted_all_the_way(filename) && is_trusted_all_the_way(resolved.get());
}
