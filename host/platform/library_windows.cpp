#include "platform/library.h"

#include <windows.h>

library::library(const std::filesystem::path& file, in_the_end then)
    : handle_{LoadLibraryW(std::filesystem::absolute(file).c_str())}, then_{then} {
    if (!handle_)
        error = "LoadLibrary fails with error " + std::to_string(GetLastError());
}

void* library::find(const char* name) const {
    if (!handle_)
        return nullptr;
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

library::~library() {
    if (handle_ && then_ == in_the_end::is_unloaded)
        FreeLibrary(static_cast<HMODULE>(handle_));
}

bool library_is_loaded(const std::filesystem::path& file) {
    return GetModuleHandleW(std::filesystem::absolute(file).c_str()) != nullptr;
}
