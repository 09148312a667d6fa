/// Lists of events that are out of the ordinary: whatever comes, the plug-in plays on.

#include "check/rows.h"
#include "check/vst_subject.h"

#include <cstddef>
#include <cstring>
#include <random>

namespace {

using random_numbers = std::mt19937;

std::uint8_t draw(random_numbers& random, unsigned below) {
    return static_cast<std::uint8_t>(random() % below);
}

void add_note(event_list& events, random_numbers& random, int frame) {
    const std::uint8_t status = random() % 2 ? 0x90 : 0x80;
    const std::uint8_t message[]{status, draw(random, 128), 100};
    events.add_midi(message, frame);
}

/// Fills the list of one block.
struct list_case {
    const char* name;
    demand by;
    void (*fill)(event_list& events, random_numbers& random);
    std::optional<plugin_format> of{};
};

constexpr list_case lists[]{
    {"events/sorted", demand::interface,
     [](event_list& events, random_numbers& random) {
         for (int i = 0; i < usual_block; ++i)
             add_note(events, random, i);
     }},
    {"events/every controller", demand::interface,
     [](event_list& events, random_numbers& random) {
         for (unsigned status = 0xA0; status < 0xF0; status += draw(random, 3) + 1u) {
             const std::uint8_t message[]{static_cast<std::uint8_t>(status), draw(random, 128),
                                          draw(random, 128)};
             events.add_midi(message, 0);
         }
     }},
    {"events/unsorted", demand::hosts,
     [](event_list& events, random_numbers& random) {
         for (int i = 0; i < 50; ++i)
             add_note(events, random, static_cast<int>(random() % usual_block));
     },
     plugin_format::vst},
    {"events/outside the block", demand::hosts,
     [](event_list& events, random_numbers& random) {
         for (const int frame : {-1, -2147483647 - 1, usual_block, 100000, 2147483647})
             add_note(events, random, frame);
     },
     plugin_format::vst},
    {"events/thousands", demand::interface,
     [](event_list& events, random_numbers& random) {
         for (int i = 0; i < 5000; ++i)
             add_note(events, random, i * usual_block / 5000);
     }},
    {"events/damaged messages", demand::hosts,
     [](event_list& events, random_numbers& random) {
         for (int i = 0; i < 100; ++i) {
             const std::uint8_t message[]{draw(random, 256), draw(random, 256), draw(random, 256)};
             events.add_midi(message, 0);
         }
     },
     plugin_format::vst},
    {"events/null", demand::hosts,
     [](event_list& events, random_numbers&) {
         for (int i = 0; i < 3; ++i)
             events.add(nullptr);
     },
     plugin_format::vst},
    {"events/other types", demand::interface,
     [](event_list& events, random_numbers&) {
         static VstEvent unknown[8];
         VstEvent* p_event = unknown;
         for (const VstInt32 type : {0, 2, 3, 4, 5, 7, 8, 9}) { // neither MIDI nor SysEx
             *p_event = {type, sizeof(VstEvent), 0, 0, {}};
             events.add(p_event++);
         }
     },
     plugin_format::vst},
    {"events/empty dumps", demand::hosts,
     [](event_list& events, random_numbers&) { events.add_sysex({}, 0); }, plugin_format::vst}};

void require_events(const trial& running, const subject& played) {
    require_outputs(running, played);
    if (!played.tested().is_instrument())
        running.skip("it is no instrument");
}

void plays_on(trial& running, const list_case& judged) {
    subject played(running, usual_rate, usual_block);
    require_events(running, played);
    random_numbers random(running.seed);
    for (int i = 0; i < 20; ++i) {
        event_list events;
        judged.fill(events, random);
        played.send(events);
        played.play_long(usual_block);
    }
    played.play_long(usual_rate / 10);
    played.expect_finite();
    played.expect_plays(false);
}

/// The list and its events end where they say.
void guarded_list(trial& running) {
    vst_subject played(running, usual_rate, usual_block);
    require_events(running, played);
    constexpr std::size_t size_of_one = offsetof(VstEvents, events) + sizeof(VstEvent*);
    const guarded_memory event(sizeof(VstMidiEvent));
    const guarded_memory list(size_of_one);
    VstMidiEvent note{};
    note.type = kVstMidiType;
    note.byteSize = sizeof note;
    note.midiData[0] = static_cast<char>(0x90);
    note.midiData[1] = note.midiData[2] = middle_note;
    std::memcpy(event.data(), &note, sizeof note);
    auto* const p_list = reinterpret_cast<VstEvents*>(list.data());
    p_list->reserved = 0;
    p_list->events[0] = reinterpret_cast<VstEvent*>(event.data());
    for (const VstInt32 nb_events : {0, 1}) {
        running.doing("a list of " + std::to_string(nb_events) + " events");
        p_list->numEvents = nb_events;
        played.ask(effProcessEvents, 0, 0, p_list);
        played.play_long(usual_block);
    }
    running.expect(std::memcmp(event.data(), &note, sizeof note) == 0, "it changes an event");
    running.doing("");
}

/// A dump ends where it says, and stays the host's.
void dumps(trial& running) {
    subject played(running, usual_rate, usual_block);
    require_events(running, played);
    for (const std::size_t length : {1u, 2u, 3u, 5u, 4095u, 4096u, 4097u, 4099u, 65536u, 70000u}) {
        running.doing("a dump of " + std::to_string(length) + " bytes");
        const guarded_memory dump(length);
        event_list events;
        events.add_sysex({reinterpret_cast<const std::uint8_t*>(dump.data()), length}, 0);
        played.send(events);
        played.play_long(usual_block);
        running.expect(dump.is_untouched(), "it changes the dump");
    }
    running.doing("");
    played.expect_finite();
    played.expect_plays(false);
}

} // namespace

table event_rows() {
    table rows = only(plugin_format::vst,
                      {{"events/list that ends where it says", demand::interface, guarded_list},
                       {"events/dumps", demand::interface, dumps}});
    for (const list_case& judged : lists)
        rows.push_back({judged.name, judged.by,
                        [&judged](trial& running) { plays_on(running, judged); }, judged.by,
                        judged.of});
    return rows;
}
