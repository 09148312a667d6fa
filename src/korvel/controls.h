#pragma once
/// The controls that act through handlers: Contour redesigns a filter, Split routes the outputs.

#include "korvel/korvel.h"

#include <string>

float contour_filter_get(const korvel* p_korvel) noexcept NONBLOCKING; ///< [any]

/// Stores the ratio, 0 to 1, and publishes the contour filter's coefficients for every rate; the
/// next block takes them. A rate whose half lies below the corner keeps what it had. [any]
void contour_filter_set(korvel* p_korvel, float value) noexcept NONBLOCKING;

float split_get_value(const korvel* p_korvel) noexcept NONBLOCKING; ///< [any]

/// Bass on out_r up to one third, on out_l up to two thirds, mixed from there on. [any]
void split_set_value(korvel* p_korvel, float value) noexcept NONBLOCKING;

/// "BassR", "BassL" or "MixLR". [ui]
std::string split_get_display(const korvel* p_korvel);
