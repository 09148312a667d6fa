#include "failure/print.h"

#include "failure/failure.h"

#include <cerrno>
#include <cstring>

void print(std::FILE* p_output, const std::string& text) {
    errno = EBADF;
    if (!p_output || std::fputs(text.c_str(), p_output) < 0 || std::fflush(p_output) != 0)
        throw failure{exit_failed,
                      std::string{"cannot write to standard output: "} + std::strerror(errno)};
}
