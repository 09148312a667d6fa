#include "platform/library.h"

#include <dlfcn.h>

// The absolute path keeps dlopen from searching the system's folders for a name without a slash.
library::library(const std::filesystem::path& file)
    : handle_{dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL)} {
    if (!handle_)
        error = dlerror();
}

void* library::find(const char* name) const { return handle_ ? dlsym(handle_, name) : nullptr; }
