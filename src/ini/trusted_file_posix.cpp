#include "ini/trusted_file.h"

#include <filesystem>
#include <list>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr int max_nb_links = 40; ///< on one way, as in the system

/// A link's mode says nothing; who could put another in its place, its folder's does.
bool is_trusted(const fs::path& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0 || (status.st_uid != 0 && status.st_uid != geteuid()))
        return false;
    return S_ISLNK(status.st_mode) || (status.st_mode & (S_IWGRP | S_IWOTH)) == 0
           || (S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX) != 0);
}

bool is_trusted_all_the_way(const fs::path& path) {
    fs::path way;
    for (const fs::path& part : path) {
        way /= part;
        if (!is_trusted(way))
            return false;
    }
    return true;
}

} // namespace

/// Each link is judged where it lies before it is followed.
std::optional<std::string> trusted_path(const char* filename) {
    std::error_code failed;
    const fs::path named = fs::absolute(filename, failed);
    std::list<fs::path> left(named.begin(), named.end());
    fs::path way;
    for (int nb_links = 0; !left.empty();) {
        const fs::path part = left.front();
        left.pop_front();
        if (part == "..") {
            way = way.parent_path();
            continue;
        }
        if (part.empty() || part == ".")
            continue;
        way /= part;
        if (!fs::is_symlink(way, failed))
            continue;
        if (++nb_links > max_nb_links || !is_trusted_all_the_way(way))
            return std::nullopt;
        const fs::path target = fs::read_symlink(way, failed);
        left.insert(left.begin(), target.begin(), target.end());
        way = way.parent_path();
    }
    return is_trusted_all_the_way(way) ? std::optional(way.string()) : std::nullopt;
}
