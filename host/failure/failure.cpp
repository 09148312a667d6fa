#include "failure/failure.h"

#include "failure/printable.h"

#include <cstdio>

failure::failure(exit_status exit, const std::string& sentence)
    : std::runtime_error{printable(sentence)}, status{exit} {}

void warn(const std::string& sentence) {
    std::fprintf(stderr, "tindelwax: warning: %s\n", printable(sentence).c_str());
}
