#include "conformance/platform.h"
#include "conformance/trial.h"

#include <cstdio>
#include <cstdlib>
#include <windows.h>

#include <tlhelp32.h>

namespace {

long nb_threads_of(DWORD process) {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    long nb_threads = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry))
        nb_threads += entry.th32OwnerProcessID == process;
    CloseHandle(snapshot);
    return nb_threads;
}

/// Counted page by page, as Wine's process counters stay at 0.
std::size_t private_bytes() {
    std::size_t nb_bytes = 0;
    MEMORY_BASIC_INFORMATION region{};
    for (char* address = nullptr; VirtualQuery(address, &region, sizeof region) != 0;
         address = static_cast<char*>(region.BaseAddress) + region.RegionSize)
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE)
            nb_bytes += region.RegionSize;
    return nb_bytes;
}

long next_handle() {
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    CloseHandle(event);
    return static_cast<long>(reinterpret_cast<std::intptr_t>(event) / 4);
}

long next_slot() {
    const DWORD slot = TlsAlloc();
    TlsFree(slot);
    return static_cast<long>(slot);
}

} // namespace

plugin_library::plugin_library(const std::filesystem::path& file)
    : handle(LoadLibraryW(std::filesystem::absolute(file).c_str())) {
    if (!handle)
        throw mismatch{"LoadLibrary fails with " + std::to_string(GetLastError())};
}

plugin_library::~plugin_library() { FreeLibrary(static_cast<HMODULE>(handle)); }

VstPluginMainProc plugin_library::entry() const {
    if (const FARPROC address = GetProcAddress(static_cast<HMODULE>(handle), "main"))
        return reinterpret_cast<VstPluginMainProc>(reinterpret_cast<void*>(address));
    throw mismatch{"the library exports no main"};
}

bool plugin_library_is_loaded(const std::filesystem::path& file) {
    return GetModuleHandleW(std::filesystem::absolute(file).c_str()) != nullptr;
}

char* map_guarded_pages(std::size_t nb_pages) {
    void* address =
        VirtualAlloc(nullptr, nb_pages * page_size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    if (!address)
        throw mismatch{"the system gives no memory"};
    auto* mapping = static_cast<char*>(address);
    DWORD before = 0;
    VirtualProtect(mapping + (nb_pages - 1) * page_size, page_size, PAGE_NOACCESS, &before);
    return mapping;
}

void unmap_guarded_pages(char* mapping, std::size_t) { VirtualFree(mapping, 0, MEM_RELEASE); }

resources resources_in_use() {
    const HANDLE process = GetCurrentProcess();
    return {.nb_bytes = private_bytes(),
            .nb_threads = nb_threads_of(GetCurrentProcessId()),
            .nb_handles = next_handle(),
            .nb_slots = next_slot(),
            .nb_windows = static_cast<long>(GetGuiResources(process, GR_USEROBJECTS)
                                            + GetGuiResources(process, GR_GDIOBJECTS))};
}

void set_environment(const char* name, const std::string& value) { _putenv_s(name, value.c_str()); }

void discard_standard_output() {
    if (!std::freopen("NUL", "w", stdout))
        throw mismatch{"there is no NUL"};
}

// Wine loses a handle each time that the file dialogs' library comes and goes.
void keep_system_libraries() { LoadLibraryW(L"comdlg32.dll"); }

void silence_crash_dialogs() {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
}
