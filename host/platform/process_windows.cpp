#include "platform/process.h"

#include <cstdlib>
#include <string>
#include <windows.h>

std::filesystem::path executable_path() {
    std::wstring path(32768, L'\0'); // as long as any can be
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

void set_environment(const char* name, const char* value) { _putenv_s(name, value); }

void silence_crash_dialogs() {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
}

// Wine loses a handle each time that the file dialogs' library comes and goes.
void keep_system_libraries() { LoadLibraryW(L"comdlg32.dll"); }
