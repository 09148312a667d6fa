#include "platform/module_handle/module_handle.h"

#include <windows.h>

void* hInstance = nullptr;

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD, LPVOID) {
    hInstance = instance;
    return TRUE;
}
