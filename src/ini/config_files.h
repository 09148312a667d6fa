#pragma once
/// The configuration texts compiled into the library, in the order in which they are searched.

#include <array>
#include <cstddef>

extern const unsigned char korvel_control[];
extern const unsigned korvel_control_len;
extern const unsigned char korvel_harping_matrix[];
extern const unsigned korvel_harping_matrix_len;

constexpr std::size_t nb_config_files = 2;

extern const std::array<const char*, nb_config_files> config_files;
extern const std::array<const unsigned char*, nb_config_files> files_data;
extern const std::array<const unsigned*, nb_config_files> files_data_len;
