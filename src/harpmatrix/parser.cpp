#include "harpmatrix/parser.h"

#include "harpmatrix/harpmatrix.h"
#include "ini/ini_text.h"

#include <cstddef>
#include <utility>

namespace {

bool is_count(int value) { return value >= 0 && value <= harpmatrix_max_count; }

/// Null for an index beyond, negative ones included.
template <typename Element>
Element* find(std::vector<Element>& elements, int index) {
    const auto position = static_cast<std::size_t>(index);
    return position < elements.size() ? &elements[position] : nullptr;
}

key* current_key(harpmatrix& matrix) { return find(matrix.p_keys, matrix.cursor.key); }

contact* current_contact(harpmatrix& matrix) {
    key* p_key = current_key(matrix);
    return p_key ? find(p_key->p_contacts, matrix.cursor.contact) : nullptr;
}

void forget(harpmatrix& matrix, const contact& forgotten) {
    matrix.cursor.nb_voices -= forgotten.nb_voices;
}

void forget(harpmatrix& matrix, const key& forgotten) {
    for (const contact& key_contact : forgotten.p_contacts)
        forget(matrix, key_contact);
}

void set_nb_keys(harpmatrix& matrix, int value) {
    if (!is_count(value))
        return;
    matrix.nb_keys = static_cast<unsigned>(value);
    matrix.p_keys.assign(matrix.nb_keys, key{});
    matrix.cursor.nb_voices = 0;
}

void set_index(harpmatrix& matrix, int value) {
    matrix.cursor.key = value;
    matrix.cursor.contact = matrix.cursor.voice = -1;
    if (key* p_key = current_key(matrix))
        forget(matrix, std::exchange(*p_key, key{}));
}

void set_nb_contacts(harpmatrix& matrix, int value) {
    key* p_key = current_key(matrix);
    if (!p_key || !is_count(value))
        return;
    forget(matrix, *p_key);
    p_key->nb_contacts = static_cast<unsigned>(value);
    p_key->p_contacts.assign(p_key->nb_contacts, contact{});
}

void set_contact(harpmatrix& matrix, int value) {
    matrix.cursor.contact = value;
    matrix.cursor.voice = -1;
    if (contact* p_contact = current_contact(matrix))
        forget(matrix, std::exchange(*p_contact, contact{}));
}

void set_nb_voices(harpmatrix& matrix, int value) {
    contact* p_contact = current_contact(matrix);
    if (!p_contact || !is_count(value))
        return;
    forget(matrix, *p_contact);
    if (matrix.cursor.nb_voices + static_cast<unsigned>(value) > harpmatrix_max_voices) {
        *p_contact = contact{};
        matrix.cursor.ended = true;
        return;
    }
    p_contact->nb_voices = static_cast<unsigned>(value);
    matrix.cursor.nb_voices += p_contact->nb_voices;
    p_contact->oscillators.assign(p_contact->nb_voices, 0);
    p_contact->tapering.assign(p_contact->nb_voices, 0);
    p_contact->conductance.assign(p_contact->nb_voices, 0.0f);
    matrix.cursor.voice = -1;
}

void set_oscillator(harpmatrix& matrix, int value) {
    contact* p_contact = current_contact(matrix);
    if (!p_contact)
        return;
    ++matrix.cursor.voice;
    if (unsigned* p_oscillator = find(p_contact->oscillators, matrix.cursor.voice))
        *p_oscillator = static_cast<unsigned>(value);
}

void set_tapering_resistor(harpmatrix& matrix, int value) {
    contact* p_contact = current_contact(matrix);
    if (!p_contact || value < 0)
        return;
    if (unsigned* p_tapering = find(p_contact->tapering, matrix.cursor.voice))
        *p_tapering = static_cast<unsigned>(value);
}

struct setting {
    const char* name;
    void (*apply)(harpmatrix& matrix, int value);
};

constexpr setting settings[] = {
    {"nb_keys", set_nb_keys},
    {"index", set_index},
    {"nb_contacts", set_nb_contacts},
    {"contact", set_contact},
    {"nb_voices", set_nb_voices},
    {"oscillator", set_oscillator},
    {"tapering_resistor", set_tapering_resistor},
};

} // namespace

int harpmatrix_handler(void* user, const char* section, const char* name, const char* value) {
    harpmatrix& matrix = *static_cast<harpmatrix*>(user);
    if (matrix.cursor.ended || !ini_equals(section, matrix.name.c_str()))
        return 1;
    for (const setting& known : settings)
        if (ini_equals(name, known.name))
            known.apply(matrix, ini_integer(value));
    return 1;
}
