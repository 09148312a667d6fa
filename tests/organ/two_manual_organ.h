#pragma once
/// Another instrument than the project's own: two manuals on channels of their own, each with its
/// generators and its wiring, the upper one heard on the right and the lower one on the left.

#include "filter/iir_filter.h"
#include "organ/organ.h"
#include "tests/noise_bank.h"
#include "tests/temporary_folder.h"

#include <algorithm>
#include <array>
#include <cstdlib>

enum manual : std::size_t { upper, lower, nb_manuals };

constexpr int organ_block = 256;
constexpr int envelope_frames = 144; ///< the keybeds' 3 ms at 48 kHz

/// Key k of four sounds oscillator k.
inline std::string wiring_text(const std::string& section) {
    std::string text = "[" + section + "]\nnb_keys=4\n";
    for (int k = 0; k < 4; ++k)
        text += "index=" + std::to_string(k)
                + "\nnb_contacts=1\ncontact=0\nnb_voices=1\noscillator=" + std::to_string(k)
                + "\ntapering_resistor=10\n";
    return text;
}

class two_manual_organ {
public:
    two_manual_organ() {
        setenv("TINDELWAX_SEED", "1", 1);
        p_organ = organ_create("Twin", nb_manuals, nb_manuals, nb_manuals, 1);
        p_organ->p_control = control_create("Twin");
        const temporary_folder folder;
        file_write(folder / "twin.ini", wiring_text("UPPER") + wiring_text("LOWER"));
        add_manual(upper, 60, "UPPER", folder / "twin.ini");
        add_manual(lower, 36, "LOWER", folder / "twin.ini");
        const int rates[] = {44100, 48000};
        p_organ->p_filters[0].reset(iir_filter_create("filter", 1, 1, 2, rates));
        organ_add_filters_to_dsp_stack(p_organ);
        p_organ->process_callback = [](organ* p_self, std::span<float> out_r,
                                       std::span<float> out_l) {
            for (const auto& [m, out] : {std::pair{upper, out_r}, {lower, out_l}}) {
                std::ranges::fill(out, 0.0f);
                tone_generator_next(p_self->p_tonegenerators[m].get(), out, 0, 3);
                tonegenerator_reset_sustain(p_self->p_tonegenerators[m].get());
            }
        };
    }

    ~two_manual_organ() {
        control* p_control = p_organ->p_control;
        organ_free(p_organ);
        control_free(p_control);
    }

    two_manual_organ(const two_manual_organ&) = delete;
    two_manual_organ& operator=(const two_manual_organ&) = delete;

    /// A parameter bound to a controller, and its value.
    void add_parameter(const char* name, std::atomic<float>* value, unsigned cc, unsigned channel) {
        control_add_parameter(p_organ->p_control, name);
        parameter& added = *p_organ->p_control->parameters.back();
        added.value = value;
        added.midi_cc = cc;
        added.midi_channel = channel;
    }

    void send(int status, int data1, int data2, int frame = 0) const {
        const char message[] = {static_cast<char>(status), static_cast<char>(data1),
                                static_cast<char>(data2)};
        organ_receive_midi_event(p_organ, message, frame);
    }

    void start() const {
        organ_set_sampling_rate(p_organ, 48000);
        organ_set_block_size(p_organ, organ_block);
    }

    struct block {
        std::vector<float> out_r, out_l;
    };

    [[nodiscard]] block render(std::size_t nb_frames = organ_block) const {
        block rendered{std::vector<float>(nb_frames, 7.0f), std::vector<float>(nb_frames, 7.0f)};
        organ_process(p_organ, rendered.out_r, rendered.out_l);
        return rendered;
    }

    organ* p_organ;

private:
    void add_manual(manual m, int first_note, const char* name, const std::string& wiring) {
        tonegenerator* p_tg = tonegenerator_create(name);
        p_tg->get_bank = [](int rate) {
            return create_noise_bank(rate, std::array{100, 100, 100, 100});
        };
        harpmatrix* p_matrix = harpmatrix_create(name);
        harpmatrix_load_ini(p_matrix, wiring.c_str(), p_organ->random);
        keybed* p_keybed = keybed_create(4, first_note, name);
        p_keybed->midi_channel = static_cast<int>(m) + 1;
        p_keybed->omni_mode = 0;
        p_keybed->keybed_callback = [=](playing_key* p_key, unsigned len) {
            const contact* p_contact = harpmatrix_find_contact(p_matrix, p_key->index, 0);
            tone_generator_add_non_sustained_oscillator(p_tg, p_contact->oscillators[0],
                                                        p_key->frame_index, len, nullptr,
                                                        p_contact->conductance[0]);
        };
        p_organ->p_tonegenerators[m].reset(p_tg);
        p_organ->p_harpmatrixes[m].reset(p_matrix);
        p_organ->p_keybeds[m].reset(p_keybed);
    }
};
