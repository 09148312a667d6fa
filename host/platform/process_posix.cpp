#include "platform/process.h"

#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

std::filesystem::path executable_path() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

void set_environment(const char* name, const char* value) { setenv(name, value, 1); }

void discard_standard_output() {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
}

void silence_crash_dialogs() {}

void keep_system_libraries() {}
