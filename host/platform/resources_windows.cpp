#include "platform/resources.h"

#include <cstdint>
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

resources resources_in_use() {
    const HANDLE process = GetCurrentProcess();
    return {.nb_bytes = private_bytes(),
            .nb_threads = nb_threads_of(GetCurrentProcessId()),
            .nb_handles = next_handle(),
            .nb_slots = next_slot(),
            .nb_windows = static_cast<long>(GetGuiResources(process, GR_USEROBJECTS)
                                            + GetGuiResources(process, GR_GDIOBJECTS))};
}
