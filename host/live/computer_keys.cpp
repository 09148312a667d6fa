#include "live/computer_keys.h"

#include <algorithm>
#include <string_view>

namespace {

// Of the lower row, without a shift, where every key sounds on the organ: its manual reaches from
// there to 72, and its bass an octave down.
constexpr int lowest_note = 36;
constexpr int min_octave = -3, max_octave = 6;
constexpr key_code escape = 1, comma = 51, full_stop = 52;

// The keys' numbers run along the rows.
struct key_row {
    std::string_view characters;
    key_code first;
};
constexpr key_row rows[] = {
    {"1234567890", 2}, {"qwertyuiop", 16}, {"asdfghjkl", 30}, {"zxcvbnm,.", 44}, {"\x1B", escape}};

constexpr std::u32string_view semitones = U"zsxdcvgbhnjmq2w3er5t6y7ui9o0p";

/// Nothing where the key is no note's.
std::optional<int> semitone_of(key_code key) {
    for (std::size_t i = 0; i < semitones.size(); ++i)
        if (key_code_of(semitones[i]) == key)
            return static_cast<int>(i);
    return std::nullopt;
}

} // namespace

key_code key_code_of(char32_t character) {
    for (const key_row& row : rows)
        for (std::size_t i = 0; i < row.characters.size(); ++i)
            if (character == static_cast<char32_t>(row.characters[i]))
                return row.first + static_cast<int>(i);
    return 0;
}

void computer_keys::press(key_code key) {
    if (held_.contains(key))
        return;
    if (key == escape) {
        held_.clear();
        instrument_.panic();
    } else if (key == comma || key == full_stop) {
        octave_ = std::clamp(octave_ + (key == comma ? -1 : 1), min_octave, max_octave);
    } else if (const auto semitone = semitone_of(key)) {
        const int note = lowest_note + 12 * octave_ + *semitone;
        if (note < 0 || note >= nb_midi_notes)
            return;
        held_[key] = note;
        instrument_.press(note);
    }
}

void computer_keys::release(key_code key) {
    const auto held = held_.find(key);
    if (held == held_.end())
        return;
    instrument_.release(held->second);
    held_.erase(held);
}

void computer_keys::toggle(key_code key) { held_.contains(key) ? release(key) : press(key); }

void computer_keys::release_all() {
    while (!held_.empty())
        release(held_.begin()->first);
}
