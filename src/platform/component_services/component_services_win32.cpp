#include "platform/component_services/component_services.h"

#include <windows.h>
// OLE comes after the system's own header.
#include <ole2.h>

ComponentServices::ComponentServices() {
    if (SUCCEEDED(OleInitialize(nullptr)))
        thread = GetCurrentThreadId();
}

ComponentServices::~ComponentServices() {
    if (thread == GetCurrentThreadId())
        OleUninitialize();
}
