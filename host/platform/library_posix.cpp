#include "platform/library.h"

#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <fstream>
#include <link.h>
#include <utility>

namespace {

/// The absolute path keeps dlopen from searching the system's folders for a name without a slash.
void* open_library(const std::filesystem::path& file, int flags) {
    return dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL | flags);
}

/// A library's beginning; of what is too short for one, zeros.
ElfW(Ehdr) header_of(std::istream& stream) {
    ElfW(Ehdr) header{};
    stream.read(reinterpret_cast<char*>(&header), sizeof header);
    return header;
}

/// In the words of somebody who chose the wrong file.
std::string reason(const std::filesystem::path& file) {
    const std::string system_says = dlerror();
    std::ifstream stream{file, std::ios::binary};
    if (!stream)
        return std::string{"it cannot be read: "} + std::strerror(errno);
    std::ifstream own_program{"/proc/self/exe", std::ios::binary};
    const auto [wanted, header] = std::pair{header_of(own_program), header_of(stream)};
    const std::string_view start{reinterpret_cast<const char*>(header.e_ident), SELFMAG};
    if (start.starts_with("MZ"))
        return "it is a Windows library";
    if (start != ELFMAG)
        return "it is no library";
    if (header.e_ident[EI_CLASS] != wanted.e_ident[EI_CLASS])
        return "it is for programs of another width";
    if (header.e_machine != wanted.e_machine)
        return "it is for another processor";
    const bool is_program = header.e_type == ET_EXEC || system_says.ends_with("executable");
    return is_program ? "it is a program, no library" : system_says;
}

} // namespace

library::library(const std::filesystem::path& file, in_the_end then)
    : handle_{open_library(file, 0)}, then_{then} {
    if (!handle_)
        error = reason(file);
}

void* library::find(const char* name) const { return handle_ ? dlsym(handle_, name) : nullptr; }

library::~library() {
    if (handle_ && then_ == in_the_end::is_unloaded)
        dlclose(handle_);
}

bool library_is_loaded(const std::filesystem::path& file) {
    void* handle = open_library(file, RTLD_NOLOAD);
    if (handle)
        dlclose(handle);
    return handle != nullptr;
}
