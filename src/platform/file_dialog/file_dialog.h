#pragma once
/// The system's dialog in which the user chooses a file. Each system's source stands beside this
/// page, by its name: posix, win32, and headless, which tests put in their place. All is [ui].

#include "vst/interface.h"

#include <cstddef>
#include <functional>

constexpr std::size_t file_path_size = 1024; ///< bytes with the terminating zero

/// Lets the user choose a file to load or save, and stores its full path at `request.returnPath`,
/// which holds file_path_size bytes. `parent` may be null. Where the dialog runs outside of this
/// process, `keep_alive` is called meanwhile; false from it cancels. Returns false when cancelled.
[[nodiscard]] bool run_file_dialog(const VstFileSelect& request, void* parent,
                                   const std::function<bool()>& keep_alive);
