#include "conformance/trial.h"

#include <stdexcept>

void trial::expect(bool holds, const std::string& what) const {
    if (!holds)
        throw std::runtime_error("rate " + std::to_string(rate) + ", block " + std::to_string(block)
                                 + ", frame " + std::to_string(frame) + ", seed "
                                 + std::to_string(seed) + (doing.empty() ? "" : ", ") + doing + ": "
                                 + what);
}
