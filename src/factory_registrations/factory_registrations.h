#pragma once
/// The registrations that the instrument brings along, in the order of their keys. [any]

#include <span>

struct factory_registration {
    const char* key;  ///< the file's name without its ending
    const char* text; ///< as instrument/registration.h reads it
};

extern const std::span<const factory_registration> factory_registrations;
