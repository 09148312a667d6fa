#include "platform/process.h"

#include <cstdlib>
#include <sys/mman.h>
#include <sys/resource.h>

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

bool keep_memory() {
    rlimit limit{};
    const bool is_unlimited =
        getrlimit(RLIMIT_MEMLOCK, &limit) == 0 && limit.rlim_cur == RLIM_INFINITY;
    // What is taken later would be refused as the limit is reached.
    return mlockall(is_unlimited ? MCL_CURRENT | MCL_FUTURE : MCL_CURRENT) == 0;
}
