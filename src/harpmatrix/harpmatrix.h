#pragma once
/// The harp matrix is the wiring between a manual's keys and the oscillators: each key has
/// contacts, and each contact connects oscillators, its voices, through a tapering resistor each,
/// whose conductance sets how strongly the oscillator sounds. It is read once from a configuration
/// text and only looked up while sound is made. Functions are [setup].

#include "random15/random15.h"
#include "realtime/nonblocking.h"

#include <string>
#include <vector>

/// A count in the text beyond this is an error of the text, and its line is skipped.
constexpr int harpmatrix_max_count = 256;

/// All voices of a wiring: a text that goes beyond ends there.
constexpr unsigned harpmatrix_max_voices = 65536;

struct contact {
    unsigned nb_voices = 0;
    std::vector<unsigned> oscillators; ///< a voice: number in the bank
    std::vector<unsigned> tapering;    ///< a voice: ohms
    std::vector<float> conductance;    ///< a voice: siemens, 1 / tapering
};

struct key {
    unsigned nb_contacts = 0;
    std::vector<contact> p_contacts;
};

/// Where the text stands; -1 before the first line of its kind.
struct harpmatrix_cursor {
    int key = -1;
    int contact = -1;
    int voice = -1;
    unsigned nb_voices = 0; ///< of all keys and contacts so far
    bool ended = false;     ///< nothing counts that follows
};

struct harpmatrix {
    unsigned nb_keys = 0;
    std::string name; ///< and of the section that it reads
    std::vector<key> p_keys{};
    harpmatrix_cursor cursor{};
};

[[nodiscard]] harpmatrix* harpmatrix_create(const char* name);

void harpmatrix_free(harpmatrix* p_matrix); ///< null is allowed

/// Reads the named text, scatters every resistor by up to 10 % either way, one draw each in the
/// order of keys, contacts and voices, and computes the conductances. Without a text the matrix
/// stays as it was.
void harpmatrix_load_ini(harpmatrix* p_matrix, const char* config_file_name, random15& random);

/// conductance = 1 / tapering for every voice; a resistor of 0 ohms conducts without bound.
void harpmatrix_update_conductance_from_tapering(harpmatrix* p_matrix);

/// Returns a key's contact, or null where the wiring has none. [audio]
const contact* harpmatrix_find_contact(const harpmatrix* p_matrix, unsigned key,
                                       unsigned contact) noexcept NONBLOCKING;
