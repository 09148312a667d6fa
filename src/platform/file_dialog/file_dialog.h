#pragma once
/// The system's dialog in which the user chooses a file. Each system's source stands beside this
/// page, by its name: posix, win32, and headless, which tests put in their place. All is [ui].

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

constexpr std::size_t max_path_bytes = 1023; ///< without the terminating zero

struct file_kind {
    std::string name;      ///< "Bank"
    std::string extension; ///< without its dot
};

struct file_request {
    bool saves = false; ///< else it loads
    std::string title{};
    std::vector<file_kind> kinds{}; ///< offered, beside all files
    std::string folder{};           ///< where it begins, if the dialog can be told
};

/// Returns the full path of the file that the user chooses, or nothing when they cancel; a path
/// that is too long is a cancelled dialog. Where the user types a name to save under, it may get
/// the first kind's extension. `parent`, the window that the dialog belongs to, may be null. Where
/// the dialog runs outside of this process, `keep_alive` is called meanwhile; false from it
/// cancels.
[[nodiscard]] std::optional<std::string> file_dialog_run(const file_request& request, void* parent,
                                                         const std::function<bool()>& keep_alive);
