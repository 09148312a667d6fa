#pragma once
/// White noise that is the same in every run.

#include <cstddef>
#include <random>
#include <vector>

inline std::vector<float> noise(std::size_t nb_samples, unsigned seed, float peak = 1.0f) {
    std::mt19937 random{seed};
    std::uniform_real_distribution<float> value{-peak, peak};
    std::vector<float> samples(nb_samples);
    for (float& sample : samples)
        sample = value(random);
    return samples;
}
