#include "conformance/trial.h"

#include "platform/process.h"

#include <stdexcept>

void trial::expect(bool holds, const std::string& what) const {
    if (!holds)
        throw std::runtime_error("rate " + std::to_string(rate) + ", block " + std::to_string(block)
                                 + ", frame " + std::to_string(frame) + ", seed "
                                 + std::to_string(seed) + (doing.empty() ? "" : ", ") + doing + ": "
                                 + what);
}

void trial::plant_seed() const { set_environment("TINDELWAX_SEED", std::to_string(seed).c_str()); }
