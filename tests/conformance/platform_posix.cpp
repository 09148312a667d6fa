#include "conformance/platform.h"
#include "conformance/trial.h"

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <malloc.h>
#include <pthread.h>
#include <sys/mman.h>

namespace {

long nb_entries(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<long>(std::distance(begin(entries), end(entries)));
}

long next_slot() {
    pthread_key_t slot = 0;
    pthread_key_create(&slot, nullptr);
    pthread_key_delete(slot);
    return static_cast<long>(slot);
}

} // namespace

plugin_library::plugin_library(const std::filesystem::path& file)
    : handle(dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (!handle)
        throw mismatch{dlerror()};
}

plugin_library::~plugin_library() { dlclose(handle); }

VstPluginMainProc plugin_library::entry() const {
    if (void* address = dlsym(handle, "main"))
        return reinterpret_cast<VstPluginMainProc>(address);
    throw mismatch{"the library exports no main"};
}

bool plugin_library_is_loaded(const std::filesystem::path& file) {
    void* handle = dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle)
        dlclose(handle);
    return handle != nullptr;
}

char* map_guarded_pages(std::size_t nb_pages) {
    void* address = mmap(nullptr, nb_pages * page_size, PROT_READ | PROT_WRITE,
                         MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (address == MAP_FAILED)
        throw mismatch{"the system gives no memory"};
    auto* mapping = static_cast<char*>(address);
    mprotect(mapping + (nb_pages - 1) * page_size, page_size, PROT_NONE);
    return mapping;
}

void unmap_guarded_pages(char* mapping, std::size_t nb_pages) {
    munmap(mapping, nb_pages * page_size);
}

resources resources_in_use() {
    const auto heap = mallinfo2();
    return {.nb_bytes = heap.uordblks + heap.hblkhd,
            .nb_threads = nb_entries("/proc/self/task"),
            .nb_handles = nb_entries("/proc/self/fd"),
            .nb_slots = next_slot(),
            .nb_windows = 0};
}

void set_environment(const char* name, const std::string& value) { setenv(name, value.c_str(), 1); }

void discard_standard_output() {
    if (!std::freopen("/dev/null", "w", stdout))
        throw mismatch{"there is no /dev/null"};
}

void keep_system_libraries() {}

void silence_crash_dialogs() {}
