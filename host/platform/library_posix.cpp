#include "platform/library.h"

#include <dlfcn.h>
#include <utility>

namespace {

/// The absolute path keeps dlopen from searching the system's folders for a name without a slash.
void* open_library(const std::filesystem::path& file, int flags) {
    return dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL | flags);
}

} // namespace

library::library(const std::filesystem::path& file) : handle_{open_library(file, 0)} {
    if (!handle_)
        error = dlerror();
}

void* library::find(const char* name) const { return handle_ ? dlsym(handle_, name) : nullptr; }

void library::unload() {
    if (void* handle = std::exchange(handle_, nullptr))
        dlclose(handle);
}

bool library_is_loaded(const std::filesystem::path& file) {
    void* handle = open_library(file, RTLD_NOLOAD);
    if (handle)
        dlclose(handle);
    return handle != nullptr;
}
