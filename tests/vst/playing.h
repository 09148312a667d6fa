#pragma once
/// What the tests of the plug-in class share: an instrument in a host's hands.

#include "korvel/korvel.h"
#include "vst/organ.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <random>
#include <vector>

inline VstIntPtr VSTCALLBACK silent_host(AEffect*, VstInt32, VstInt32, VstIntPtr, void*, float) {
    return 0;
}

/// The plug-in as the factory makes it, with programs where a test wants some.
inline std::unique_ptr<Organ> make_organ(const char* seed = "1", int nb_programs = 0,
                                         audioMasterCallback host = silent_host) {
    setenv("TINDELWAX_SEED", seed, 1);
    organ* p_organ = korvel_create("Tindelwax");
    return std::make_unique<Organ>(
        host, nb_programs, static_cast<VstInt32>(p_organ->p_control->nb_parameters), p_organ);
}

/// The same, with a rate set.
inline std::unique_ptr<Organ> make_playing_organ(const char* seed = "1", int rate = 48000) {
    auto p_effect = make_organ(seed);
    p_effect->setSampleRate(static_cast<float>(rate));
    return p_effect;
}

struct timed_message {
    int frame;
    unsigned char data[3];
};

/// Hands in the messages of one block; more than a host's array holds are fine.
inline void send(Organ& effect, const std::vector<timed_message>& messages) {
    std::vector<VstMidiEvent> events(messages.size());
    std::vector<char> list(sizeof(VstEvents) + messages.size() * sizeof(VstEvent*));
    auto* p_events = reinterpret_cast<VstEvents*>(list.data());
    p_events->numEvents = static_cast<VstInt32>(messages.size());
    VstEvent** slots = p_events->events;
    for (std::size_t i = 0; i < messages.size(); ++i) {
        events[i].type = kVstMidiType;
        events[i].byteSize = sizeof(VstMidiEvent);
        events[i].deltaFrames = messages[i].frame;
        std::copy_n(messages[i].data, 3, events[i].midiData);
        slots[i] = reinterpret_cast<VstEvent*>(&events[i]);
    }
    effect.processEvents(p_events);
}

struct stereo {
    std::vector<float> r, l;
};

/// Asks for one block and appends it.
inline void process(Organ& effect, int nb_frames, stereo& out) {
    const std::size_t start = out.r.size();
    for (auto* channel : {&out.r, &out.l})
        channel->resize(start + static_cast<std::size_t>(nb_frames),
                        std::numeric_limits<float>::quiet_NaN());
    float* outputs[] = {out.r.data() + start, out.l.data() + start};
    effect.processReplacing(nullptr, outputs, nb_frames);
}

/// A piece of music in absolute frames, the same for the same seed: notes on both keybeds, and on
/// request stops, contour and vibrato.
inline std::vector<timed_message> random_music(unsigned seed, int nb_frames,
                                               bool has_controllers = true) {
    std::mt19937 random(seed);
    std::vector<timed_message> music;
    for (int frame = 100; frame < nb_frames; frame += 1 + static_cast<int>(random() % 700)) {
        const auto note = static_cast<unsigned char>(24 + random() % 49);
        if (has_controllers && random() % 10 == 0)
            music.push_back({frame,
                             {0xB0, static_cast<unsigned char>(80 + random() % 7),
                              static_cast<unsigned char>(random() % 128)}});
        else
            music.push_back(
                {frame, {static_cast<unsigned char>(random() % 2 ? 0x90 : 0x80), note, 100}});
    }
    return music;
}

/// Plays music in blocks whose lengths next_length() gives.
template <typename NextLength>
stereo play(Organ& effect, const std::vector<timed_message>& music, int nb_frames,
            NextLength next_length) {
    stereo out;
    auto next = music.begin();
    for (int start = 0; start < nb_frames;) {
        const int len = std::min<int>(next_length(), nb_frames - start);
        std::vector<timed_message> block;
        for (; next != music.end() && next->frame < start + len; ++next) {
            block.push_back(*next);
            block.back().frame -= start;
        }
        send(effect, block);
        process(effect, len, out);
        start += len;
    }
    return out;
}

inline float peak(const std::vector<float>& samples) {
    float largest = 0;
    for (const float x : samples)
        largest = std::max(largest, x < 0 ? -x : x);
    return largest;
}
