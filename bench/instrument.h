#pragma once
/// An instrument under measurement, in the fast form that musicians get or in the plain form that
/// the tests hold it to.

#include "korvel/korvel.h"
#include "plain/bank.h"
#include "plain/korvel.h"
#include "vst/organ.h"

#include <array>
#include <memory>
#include <vector>

enum form : int { fast, plain };

constexpr int bench_rate = 48000;

inline VstIntPtr VSTCALLBACK bench_host(AEffect*, VstInt32, VstInt32, VstIntPtr, void*, float) {
    return 0;
}

/// Returns a plug-in without a rate.
inline std::unique_ptr<Organ> create_plug_in(form built) {
    constexpr const char* name = "Tindelwax";
    organ* p_organ = built == plain ? plain_korvel_create(name) : korvel_create(name);
    if (built == plain)
        p_organ->p_tonegenerators[0]->get_bank = [p_organ](int rate) {
            return plain_bank_filtered(rate, p_organ->random);
        };
    return std::make_unique<Organ>(
        bench_host, 0, static_cast<VstInt32>(p_organ->p_control->nb_parameters), p_organ);
}

/// A plug-in at 48 kHz, all stops and the vibrato on, and buffers for its blocks.
class instrument {
public:
    instrument(form built, int block) : p_effect(create_plug_in(built)), block_frames(block) {
        p_effect->setSampleRate(bench_rate);
        p_effect->setBlockSize(block);
        for (const VstInt32 switched_on : {0, 1, 2, 3, 4})
            p_effect->setParameter(switched_on, 1.0f);
        for (auto& channel : channels)
            channel.resize(static_cast<std::size_t>(block));
    }

    /// Sends note-ons, or note-offs, spread over the keyboard.
    void play(int nb_keys, bool on) {
        for (int i = 0; i < nb_keys; ++i) {
            VstMidiEvent note{};
            note.type = kVstMidiType;
            note.midiData[0] = static_cast<char>(on ? 0x90 : 0x80);
            note.midiData[1] = static_cast<char>(nb_keys == 49 ? 24 + i : 36 + 3 * i);
            note.midiData[2] = 100;
            VstEvents events{};
            events.numEvents = 1;
            events.events[0] = reinterpret_cast<VstEvent*>(&note);
            p_effect->processEvents(&events);
        }
    }

    void render_block() {
        float* outputs[] = {channels[0].data(), channels[1].data()};
        p_effect->processReplacing(nullptr, outputs, block_frames);
    }

    void render_second() {
        for (int frame = 0; frame < bench_rate; frame += block_frames)
            render_block();
    }

private:
    std::unique_ptr<Organ> p_effect;
    int block_frames;
    std::array<std::vector<float>, 2> channels;
};
