#include "harpmatrix/harpmatrix.h"

#include "harpmatrix/parser.h"
#include "ini/ini.h"

#include <memory>

namespace {

constexpr double resistor_tolerance = 0.1;

template <typename Function>
void for_each_contact(harpmatrix* p_matrix, Function function) {
    for (key& matrix_key : p_matrix->p_keys)
        for (contact& key_contact : matrix_key.p_contacts)
            function(key_contact);
}

unsigned spread(unsigned tapering, random15& random) {
    const double u = 2.0 * static_cast<double>(random15_unit(random)) - 1.0;
    const double ohms = tapering;
    return static_cast<unsigned>(ohms + u * resistor_tolerance * ohms);
}

} // namespace

harpmatrix* harpmatrix_create(const char* name) { return new harpmatrix{.name = name}; }

void harpmatrix_free(harpmatrix* p_matrix) { delete p_matrix; }

void harpmatrix_load_ini(harpmatrix* p_matrix, const char* config_file_name, random15& random) {
    const std::unique_ptr<ini_data, decltype(&ini_data_free)> p_text(
        ini_load_data(config_file_name), ini_data_free);
    if (ini_parse(p_text.get(), harpmatrix_handler, p_matrix) < 0)
        return;
    for_each_contact(p_matrix, [&](contact& key_contact) {
        for (unsigned& tapering : key_contact.tapering)
            tapering = spread(tapering, random);
    });
    harpmatrix_update_conductance_from_tapering(p_matrix);
}

void harpmatrix_update_conductance_from_tapering(harpmatrix* p_matrix) {
    for_each_contact(p_matrix, [](contact& key_contact) {
        for (unsigned v = 0; v < key_contact.nb_voices; ++v)
            key_contact.conductance[v] = static_cast<float>(1.0 / key_contact.tapering[v]);
    });
}

const contact* harpmatrix_find_contact(const harpmatrix* p_matrix, unsigned key,
                                       unsigned contact) noexcept {
    if (key >= p_matrix->p_keys.size() || contact >= p_matrix->p_keys[key].p_contacts.size())
        return nullptr;
    return &p_matrix->p_keys[key].p_contacts[contact];
}
