#include "platform/process.h"

#include <cstdlib>
#include <sys/mman.h>

std::vector<std::string> program_arguments(int argc, char** argv) {
    return {argv + 1, argv + argc};
}

std::filesystem::path executable_path() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

void set_environment(const char* name, const char* value) { setenv(name, value, 1); }

void silence_crash_dialogs() {}

void keep_system_libraries() {}

void keep_memory() { (void)mlockall(MCL_CURRENT | MCL_FUTURE); }
