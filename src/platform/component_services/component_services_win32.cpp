#include "platform/component_services/component_services.h"

#include <windows.h>
// OLE comes after the system's own header.
#include <ole2.h>

namespace {

/// A handle to the thread that runs, null where the system gives none. While it is held no other
/// thread gets the number of this one, even after its end.
std::shared_ptr<void> hold_this_thread() {
    HANDLE thread = nullptr;
    DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), &thread,
                    THREAD_QUERY_LIMITED_INFORMATION, FALSE, 0);
    return {thread, [](HANDLE held) {
                if (held)
                    CloseHandle(held);
            }};
}

} // namespace

component_services component_services_prepare() {
    if (FAILED(OleInitialize(nullptr)))
        return nullptr;
    const auto release = [thread = hold_this_thread(), id = GetCurrentThreadId()](void*) {
        if (thread && GetCurrentThreadId() == id)
            OleUninitialize();
    };
    return {nullptr, release};
}
