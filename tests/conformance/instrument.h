#pragma once
/// A plug-in under test, from its loading to its unloading.

#include "conformance/events.h"
#include "conformance/host.h"
#include "conformance/trial.h"
#include "plugin/effect.h"
#include "plugin/event_list.h"
#include "probe/guarded_memory.h"

#include <array>
#include <string>
#include <utility>
#include <vector>

enum parameter_index : VstInt32 {
    flute,
    bright,
    brass,
    mellow,
    vibrato,
    bass_chords,
    volume,
    contour,
    bass,
    split,
    nb_parameters
};

/// The MIDI controller of each, by its index.
constexpr int controllers[]{80, 81, 82, 83, 84, 85, 7, 86, 87, 88};

/// Split's values for the bass alone on the right (output 0), and for both outputs alike.
constexpr float split_bass_right = 0.0f;
constexpr float split_mixed = 1.0f;

struct set_up {
    int rate = 48000;
    std::vector<int> blocks{64}; ///< lengths of the host's blocks, over and over
    std::vector<std::pair<VstInt32, float>> parameters{};
};

struct recording {
    std::vector<float> right{}; ///< output 0
    std::vector<float> left{};  ///< output 1
};

class instrument {
public:
    /// Loads the library and asks for an effect, seeded with the trial's seed; nothing is set up.
    explicit instrument(trial& running, host_answers answers = answer_version);

    /// The same, ready to play.
    instrument(trial& running, const set_up& wanted);

    instrument(const instrument&) = delete;
    instrument& operator=(const instrument&) = delete;

    void prepare(const set_up& wanted);

    VstIntPtr ask(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                  float opt = 0);
    void set(VstInt32 index, float value) { loaded.set(index, value); }
    [[nodiscard]] float get(VstInt32 index) { return loaded.get(index); }
    [[nodiscard]] std::string text(VstInt32 opcode, std::size_t nb_bytes, VstInt32 index = 0);

    [[nodiscard]] AEffect* record() const { return loaded.record(); } ///< null once it is closed
    VstIntPtr close() { return loaded.close(); }

    void send(event_list& events) { ask(effProcessEvents, 0, 0, events.records()); }
    void send(const midi& message); ///< at the start of the next block

    /// Plays the next frames in blocks of the lengths set up, the last one cut to fit.
    recording render(const score& played, long nb_frames);

    /// Plays one block and appends it.
    void process(recording& sound, int nb_frames);

    trial& running;
    recording_host its_host;

private:
    effect loaded;

    void send_until(const score& played, std::size_t& next, long start, int nb_frames);

    std::vector<int> blocks{64};
    std::size_t next_block = 0;
};
