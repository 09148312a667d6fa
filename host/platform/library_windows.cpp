#include "platform/library.h"

#include <utility>
#include <windows.h>

library::library(const std::filesystem::path& file)
    : handle_{LoadLibraryW(std::filesystem::absolute(file).c_str())} {
    if (!handle_)
        error = "LoadLibrary fails with error " + std::to_string(GetLastError());
}

void* library::find(const char* name) const {
    if (!handle_)
        return nullptr;
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

void library::unload() {
    if (void* handle = std::exchange(handle_, nullptr))
        FreeLibrary(static_cast<HMODULE>(handle));
}

bool library_is_loaded(const std::filesystem::path& file) {
    return GetModuleHandleW(std::filesystem::absolute(file).c_str()) != nullptr;
}
