#pragma once
/// What the suite needs of the system it runs on.

#include "vst/interface.h"

#include <cstddef>
#include <filesystem>
#include <string>

/// A plug-in's library in memory.
class plugin_library {
public:
    explicit plugin_library(const std::filesystem::path& file); ///< throws a mismatch
    ~plugin_library();
    plugin_library(const plugin_library&) = delete;
    plugin_library& operator=(const plugin_library&) = delete;

    [[nodiscard]] VstPluginMainProc entry() const; ///< throws a mismatch where there is none

private:
    void* handle;
};

[[nodiscard]] bool plugin_library_is_loaded(const std::filesystem::path& file);

constexpr std::size_t page_size = 4096;

/// Fresh pages, the last of which nobody may touch. Throws a mismatch when there are none.
[[nodiscard]] char* map_guarded_pages(std::size_t nb_pages);

void unmap_guarded_pages(char* mapping, std::size_t nb_pages);

/// What the process holds of the system.
struct resources {
    std::size_t nb_bytes;
    long nb_threads;
    long nb_handles; ///< files, connections, objects of the kernel; on Windows the next free one
    long nb_slots;   ///< the next free thread-local one
    long nb_windows; ///< windows and drawing objects, where the system counts them apart
};

[[nodiscard]] resources resources_in_use();

void set_environment(const char* name, const std::string& value);

/// The plug-in writes lines of its own there; the suite reports on the standard error stream.
void discard_standard_output();

/// Loads what a host of this system has loaded anyway, for good.
void keep_system_libraries();

/// A crash ends the process at once, without asking anyone.
void silence_crash_dialogs();
