#include "platform/library.h"

#include <array>
#include <dlfcn.h>
#include <elf.h>
#include <fstream>
#include <utility>

namespace {

/// The absolute path keeps dlopen from searching the system's folders for a name without a slash.
void* open_library(const std::filesystem::path& file, int flags) {
    return dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL | flags);
}

/// In the words of somebody who chose the wrong file.
std::string reason(const std::filesystem::path& file) {
    const std::string system_says = dlerror();
    std::array<char, EI_NIDENT> start{};
    std::ifstream{file, std::ios::binary}.read(start.data(), start.size());
    const std::string_view text{start.data(), start.size()};
    if (text.starts_with("MZ"))
        return "it is a Windows library";
    if (!text.starts_with(ELFMAG))
        return "it is no library";
    constexpr auto own_width = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
    return text[EI_CLASS] == own_width ? system_says : "it is for programs of another width";
}

} // namespace

library::library(const std::filesystem::path& file) : handle_{open_library(file, 0)} {
    if (!handle_)
        error = reason(file);
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
