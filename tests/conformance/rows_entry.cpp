/// The door: what main gives to hosts of every kind.

#include "conformance/instrument.h"
#include "conformance/tables.h"
#include "probe/signal.h"

#include <cstdint>
#include <random>

namespace {

void host_of_version_0(trial& running) {
    const library loaded(running.plugin_file);
    recording_host silent{.answer = [](const host_call&) { return VstIntPtr{0}; }};
    host_answers answers = [&silent](const host_call& call) { return silent.take(call); };
    running.expect(effect_create(plugin_entry(loaded), answers) == nullptr,
                   "a host of version 0 gets an effect");
    running.expect(silent.calls.size() == 1 && silent.calls[0].opcode == audioMasterVersion,
                   "the host is asked for more than its version");
}

/// Any version but 0 is a host's.
void host_of_odd_version(trial& running) {
    for (const VstIntPtr version : {1, 2300, 2400, -1}) {
        const instrument accepted(running, [version](const host_call&) { return version; });
        running.expect(accepted.record()->magic == kEffectMagic, "the record has no magic number");
    }
}

/// Plays a chord and expects to hear it.
void expect_sound(instrument& playing) {
    playing.prepare({});
    const recording sound = playing.render({note_on(0, 48), note_on(0, 26)}, 4800);
    playing.running.expect(is_finite(sound.right) && peak(sound.right) > 1e-3, "it does not play");
}

void host_of_garbage(trial& running) {
    std::mt19937 random(running.seed);
    instrument playing(running, [&random](const host_call&) {
        return static_cast<VstIntPtr>(std::uint64_t{random() | 1u} * 0x10001);
    });
    expect_sound(playing);
}

void host_of_nothing_but_a_version(trial& running) {
    instrument playing(running, answer_version);
    expect_sound(playing);
}

/// A host that has a record in hand uses it at once, though main has not returned.
void callback_during_main(trial& running) {
    long nb_questions = 0;
    const instrument asked(running, [&](const host_call& call) {
        if (call.effect && call.effect->dispatcher) {
            ++nb_questions;
            AEffect* effect = call.effect;
            running.expect(effect->dispatcher(effect, effGetVstVersion, 0, 0, nullptr, 0)
                               == kVstVersion,
                           "it has no version while it is made");
            const float value = effect->getParameter(effect, volume);
            running.expect(value == 0.5f, "it has no defaults while it is made");
            effect->setParameter(effect, volume, value);
        }
        return answer_version(call);
    });
    running.expect(nb_questions > 0, "an instrument asks for MIDI events as it is made");
}

void midi_is_asked_for_on_resume(trial& running) {
    instrument resumed(running);
    const long before = resumed.its_host.nb_calls(__audioMasterWantMidiDeprecated);
    resumed.ask(effMainsChanged, 0, 1);
    running.expect(resumed.its_host.nb_calls(__audioMasterWantMidiDeprecated) == before + 1,
                   "resume asks for MIDI events once");
    resumed.ask(effMainsChanged, 0, 0);
    running.expect(resumed.its_host.nb_calls(__audioMasterWantMidiDeprecated) == before + 1,
                   "suspend asks for MIDI events");
}

} // namespace

table entry_rows() {
    return {{"entry/host of version 0", host_of_version_0},
            {"entry/host of odd version", host_of_odd_version},
            {"entry/host that answers 0", host_of_nothing_but_a_version},
            {"entry/host that answers garbage", host_of_garbage},
            {"entry/callback during main", callback_during_main},
            {"entry/MIDI events wanted", midi_is_asked_for_on_resume}};
}
