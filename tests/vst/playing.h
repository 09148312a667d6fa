#pragma once
/// What the tests of the plug-in class share: an instrument in a host's hands.

#include "korvel/korvel.h"
#include "vst/organ.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <random>
#include <vector>

inline VstIntPtr VSTCALLBACK silent_host(AEffect*, VstInt32, VstInt32, VstIntPtr, void*, float) {
    return 0;
}

/// The plug-in as the factory makes it, with programs where a test wants some.
inline std::unique_ptr<Organ> make_organ(int nb_programs = 0) {
    setenv("TINDELWAX_SEED", "1", 1);
    organ* p_organ = korvel_create("Tindelwax");
    return std::make_unique<Organ>(silent_host, nb_programs,
                                   static_cast<VstInt32>(p_organ->p_control->nb_parameters),
                                   p_organ);
}

struct timed_message {
    int frame;
    unsigned char data[3];
};

/// Messages of every kind that a keyboard sends, the same in every run.
inline std::vector<timed_message> random_messages(std::size_t nb_messages) {
    constexpr unsigned char statuses[] = {0x90, 0x90, 0x80, 0xB0, 0xC0, 0xE0};
    std::mt19937 random(1);
    const auto data_byte = [&] { return static_cast<unsigned char>(random() % 128); };
    std::vector<timed_message> messages(nb_messages);
    for (timed_message& message : messages)
        message = {static_cast<int>(random() % 5000),
                   {statuses[random() % 6], data_byte(), data_byte()}};
    return messages;
}

/// The messages of one block as a host hands them in; more than its array holds are fine. Not to
/// be copied: it points into itself.
class event_list {
public:
    explicit event_list(const std::vector<timed_message>& messages)
        : events(messages.size()), memory(sizeof(VstEvents) + messages.size() * sizeof(VstEvent*)) {
        record()->numEvents = static_cast<VstInt32>(messages.size());
        VstEvent** slots = record()->events;
        for (std::size_t i = 0; i < messages.size(); ++i) {
            events[i].type = kVstMidiType;
            events[i].byteSize = sizeof(VstMidiEvent);
            events[i].deltaFrames = messages[i].frame;
            std::copy_n(messages[i].data, 3, events[i].midiData);
            slots[i] = reinterpret_cast<VstEvent*>(&events[i]);
        }
    }
    event_list(const event_list&) = delete;
    event_list& operator=(const event_list&) = delete;

    VstEvents* record() { return reinterpret_cast<VstEvents*>(memory.data()); }

private:
    std::vector<VstMidiEvent> events;
    std::vector<char> memory;
};

inline void send(Organ& effect, const std::vector<timed_message>& messages) {
    event_list list(messages);
    effect.processEvents(list.record());
}

/// Asks for one block; returns the right output.
inline std::vector<float> process(Organ& effect, int nb_frames) {
    std::vector<float> right(static_cast<std::size_t>(nb_frames));
    std::vector<float> left(right);
    float* outputs[] = {right.data(), left.data()};
    effect.processReplacing(nullptr, outputs, nb_frames);
    return right;
}
