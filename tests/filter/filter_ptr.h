#pragma once
/// Filters that free themselves.

#include "filter/filter.h"
#include "filter/iir_filter.h"

#include <array>
#include <memory>

using filter_ptr = std::unique_ptr<filter, decltype(&filter_free)>;

constexpr std::array filter_rates{22050, 44100, 48000};

inline filter_ptr own(filter* p_filter) { return {p_filter, filter_free}; }

/// A recursive filter for three rates, none selected.
inline filter_ptr create_iir(int order, unsigned nb_cascaded_stages = 0) {
    return own(iir_filter_create("iir", order, nb_cascaded_stages,
                                 static_cast<int>(filter_rates.size()), filter_rates.data()));
}
