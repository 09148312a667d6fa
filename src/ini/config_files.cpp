#include "ini/config_files.h"

const std::array<const char*, nb_config_files> config_files{"../control/confs/korvel.ini",
                                                            "../harpmatrix/korvel.ini"};
const std::array<const unsigned char*, nb_config_files> files_data{korvel_control,
                                                                   korvel_harping_matrix};
const std::array<const unsigned*, nb_config_files> files_data_len{&korvel_control_len,
                                                                  &korvel_harping_matrix_len};
