#include "platform/component_services/component_services.h"

#include <windows.h>
// OLE comes after the system's own header.
#include <ole2.h>

component_services component_services_prepare() {
    if (FAILED(OleInitialize(nullptr)))
        return nullptr;
    const auto release = [thread = GetCurrentThreadId()](void*) {
        if (GetCurrentThreadId() == thread)
            OleUninitialize();
    };
    return {nullptr, release};
}
