#include "failure/failure.h"

#include "failure/printable.h"

failure::failure(exit_status exit, const std::string& sentence)
    : std::runtime_error{printable(sentence)}, status{exit} {}
