#include "conformance/trial.h"

void trial::expect(bool holds, const std::string& what) const {
    if (!holds)
        throw mismatch{what};
}

std::string trial_text(const trial& current) {
    return "rate " + std::to_string(current.rate) + ", block " + std::to_string(current.block)
           + ", frame " + std::to_string(current.frame) + ", seed " + std::to_string(current.seed)
           + (current.doing.empty() ? "" : ", ") + current.doing + ": ";
}
