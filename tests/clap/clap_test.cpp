/// The built CLAP library in a host's hands; beside the VST library, for the sound.

#include "host.h"

#include "plugin/effect.h"
#include "plugin/event_list.h"

#include <fstream>
#include <iterator>
#include <limits>
#include <random>
#include <sstream>

namespace {

constexpr clap_id flute = 0, vibrato = 4, volume = 6, split = 9;
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// What a host may send that means nothing here.
events nonsense() {
    events list{value_at(0, flute, not_a_number),
                value_at(0, volume, infinity),
                value_at(7, 99, 0.1),
                value_at(UINT32_MAX, CLAP_INVALID_ID, 0.1),
                note_at(0, CLAP_EVENT_NOTE_ON, 128),
                note_at(3, CLAP_EVENT_NOTE_ON, 60, 16),
                note_at(2, CLAP_EVENT_NOTE_ON, 60, 0, 1, 1),
                note_at(1, CLAP_EVENT_NOTE_ON, -1),
                note_at(0, CLAP_EVENT_NOTE_OFF, 62, 0, 77),
                note_at(0, 4, 60),
                any_event{}};
    for (any_event event : {note_at(0, CLAP_EVENT_NOTE_ON, 61), value_at(0, volume, 0.1),
                            midi_at(0, {0x90, 61, 1})}) {
        list.push_back(event);
        --list.back().header.size;
        list.push_back(event);
        list.back().header.space_id = 1;
    }
    list.push_back(midi_at(0, {0x90, 63, 1}));
    list.back().midi.port_index = 1;
    return list;
}

TEST(Clap, SoundIsThatOfTheVstToTheBit) {
    constexpr int block_size = 1024;
    for (const int rate : {44100, 48000, 96000})
        for (const bool as_midi : {false, true}) {
            hosted clap(rate); // chooses the seed of both
            const effect vst(VST_FILE, answer_version);
            vst.ask(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate));
            vst.ask(effSetBlockSize, 0, block_size);
            vst.ask(effMainsChanged, 0, 1);
            std::mt19937 random(static_cast<unsigned>(rate));
            const auto below = [&](std::size_t n) { return static_cast<int>(random() % n); };
            float peak = 0;
            for (int i = 0; i < 300; ++i) {
                const int nb_frames = 1 + below(block_size);
                event_list list;
                events sent;
                for (int frame = 0; frame < nb_frames; frame += below(300)) {
                    constexpr int kinds[] = {0x90, 0x80, 0x80, 0xB0};
                    const int kind = kinds[below(4)];
                    const int channel = kind == 0xB0 ? 0 : below(3);
                    const std::array bytes{kind | channel,
                                           kind == 0xB0 ? 80 + below(9) : 20 + below(56),
                                           below(127) + 1};
                    const std::uint8_t message[] = {static_cast<std::uint8_t>(bytes[0]),
                                                    static_cast<std::uint8_t>(bytes[1]),
                                                    static_cast<std::uint8_t>(bytes[2])};
                    const auto at = static_cast<std::uint32_t>(frame);
                    list.add_midi(message, frame);
                    // By notes, a channel lets go of what it holds alone.
                    sent.push_back(
                        as_midi || kind == 0xB0
                            ? midi_at(at, bytes)
                            : note_at(at, kind == 0x90 ? CLAP_EVENT_NOTE_ON : CLAP_EVENT_NOTE_OFF,
                                      bytes[1], kind == 0x90 ? channel : -1));
                }
                vst.ask(effProcessEvents, 0, 0, list.records());
                const auto len = static_cast<std::size_t>(nb_frames);
                std::vector<float> right(len), left(len);
                float* outputs[] = {right.data(), left.data()};
                vst.record()->processReplacing(vst.record(), nullptr, outputs, nb_frames);
                clap.process(len, sent);
                ASSERT_TRUE(right == clap.right && left == clap.left)
                    << rate << " Hz, as MIDI " << as_midi << ", block " << i;
                peak = std::max(peak, clap.peak());
            }
            EXPECT_GT(peak, 0.01f);
        }
}

TEST(Clap, ParametersMoveOnTheirFrame) {
    using block = std::pair<std::size_t, events>;
    const any_event strike = note_at(0, CLAP_EVENT_NOTE_ON, 60);
    const events at_once = {value_at(0, volume, 0.25), value_at(0, split, 0.1)};
    const std::tuple<const char*, events, std::vector<block>> rows[] = {
        {"one cut",
         {strike, value_at(301, volume, 0.25), value_at(301, split, 0.1)},
         {{301, {strike}}, {723, at_once}}},
        {"a note of that frame comes after",
         {strike, note_at(301, CLAP_EVENT_NOTE_ON, 64), at_once[0]},
         {{301, {strike}}, {723, {note_at(0, CLAP_EVENT_NOTE_ON, 64), at_once[0]}}}},
        {"no cut: the controller acts as the block begins",
         {strike, value_at(301, volume, 0.5), value_at(301, vibrato, 0.2),
          midi_at(500, {0xB0, 86, 127})},
         {{1024, {strike, midi_at(0, {0xB0, 86, 127})}}}},
        {"beyond the block, and back",
         {strike, value_at(5000, volume, 0.25), at_once[1]},
         {{1023, {strike}}, {1, at_once}}},
        {"out of range",
         {strike, value_at(0, volume, 7), value_at(0, vibrato, -1e300)},
         {{1024, {value_at(0, volume, 1), value_at(0, vibrato, 0), strike}}}},
        {"nonsense",
         [&] {
             auto list = nonsense();
             list.insert(list.begin(), strike);
             return list;
         }(),
         {{1024, {strike}}}},
    };
    for (const auto& [name, sent, blocks] : rows) {
        hosted cut, parts;
        cut.process(1024, sent);
        std::vector<float> right;
        for (const auto& [nb_frames, its_events] : blocks) {
            parts.process(nb_frames, its_events);
            right.insert(right.end(), parts.right.begin(), parts.right.end());
        }
        EXPECT_EQ(cut.right, right) << name;
        EXPECT_GT(cut.peak(), 0.001f) << name;
        for (clap_id id = 0; id < 10; ++id)
            EXPECT_EQ(cut.value(id), parts.value(id)) << name;
    }
}

TEST(Clap, EndsAreReportedOnceOfNotesThatWereBegun) {
    const any_event on = note_at(5, CLAP_EVENT_NOTE_ON, 60, 2, 9);
    const auto off = [](int key, int channel, int id, int port = 0) {
        return note_at(100, CLAP_EVENT_NOTE_OFF, key, channel, id, port);
    };
    using ids = std::vector<int>;
    const std::tuple<const char*, events, ids, ids> rows[] = {
        // Ended in this block of 4096 frames, and in the next.
        {"held", {on}, {}, {}},
        {"released", {on, off(60, 2, 9)}, {9}, {}},
        {"by the key", {on, off(60, -1, -1, -1)}, {9}, {}},
        {"by the id", {on, off(-1, -1, 9, -1)}, {9}, {}},
        {"by nothing", {on, off(-1, -1, -1, -1)}, {9}, {}},
        {"another", {on, off(61, 2, 9), off(60, 1, 9), off(60, 2, 8), off(60, 2, 9, 1)}, {}, {}},
        {"without an id", {note_at(5, CLAP_EVENT_NOTE_ON, 60, 2), off(60, 2, 9)}, {-1}, {}},
        {"choked", {on, note_at(4095, CLAP_EVENT_NOTE_CHOKE, 60, 2, 9)}, {9}, {}},
        {"choked where it begins", {on, note_at(5, CLAP_EVENT_NOTE_CHOKE, 60)}, {}, {}},
        {"choked in all", {on, note_at(5, CLAP_EVENT_NOTE_CHOKE, -1, -1, -1, -1)}, {9}, {}},
        {"late", {on, note_at(4000, CLAP_EVENT_NOTE_OFF, 60, 2, 9)}, {}, {9}},
        {"begun anew", {on, note_at(50, CLAP_EVENT_NOTE_ON, 60, 2, 8), off(60, 2, -1)}, {8}, {}},
        {"of two channels",
         {on, note_at(6, CLAP_EVENT_NOTE_ON, 60, 3, 4), off(60, 3, 4)},
         {9, 4},
         {}},
        {"without a key", {note_at(0, CLAP_EVENT_NOTE_ON, 100, 0, 3)}, {3}, {}},
        {"by MIDI", {midi_at(0, {0x90, 60, 1}), midi_at(9, {0x80, 60, 1})}, {}, {}},
    };
    for (const auto& [name, sent, first, second] : rows) {
        hosted clap;
        for (const auto& [expected, its_events] : {std::pair{first, sent}, {second, events{}}}) {
            clap.process(4096, its_events);
            ids ended;
            for (const any_event& event : clap.sent) {
                EXPECT_EQ(event.header.type, CLAP_EVENT_NOTE_END) << name;
                EXPECT_EQ(event.note.port_index, 0) << name;
                ended.push_back(event.note.note_id);
            }
            EXPECT_EQ(ended, expected) << name;
        }
    }
    hosted clap;
    clap.takes_events = false;
    EXPECT_EQ(clap.process(64, {note_at(0, CLAP_EVENT_NOTE_ON, 100)}), CLAP_PROCESS_CONTINUE);
    clap.takes_events = true;
    clap.process(64);
    EXPECT_EQ(clap.sent.size(), 1u) << "told again";
}

TEST(Clap, ItSleepsOnceItIsSilentWithinTheTail) {
    for (const double rate : {1000.0, 22050.0, 48000.0, 192000.0}) {
        hosted clap(rate);
        events chord{value_at(0, volume, 1), value_at(0, volume + 2, 1), value_at(0, vibrato, 1),
                     value_at(0, 7, 0)};
        for (int key = 24; key <= 72; ++key)
            chord.push_back(note_at(0, CLAP_EVENT_NOTE_ON, key));
        EXPECT_EQ(clap.process(4000, chord), CLAP_PROCESS_CONTINUE);
        for (int i = 0; i < 50; ++i)
            EXPECT_EQ(clap.process(4000), CLAP_PROCESS_CONTINUE);
        EXPECT_EQ(clap.output.constant_mask, 0u);
        clap.process(1, {note_at(0, CLAP_EVENT_NOTE_OFF, -1, -1, -1, -1)});
        clap.process(clap.extension<clap_plugin_tail>(clap_tail_id).get(clap.plugin));
        clap.process(4000);
        EXPECT_LT(clap.peak(), std::pow(10.0f, -90.0f / 20)) << rate;
        int nb_blocks = 0;
        while (clap.process(4000) != CLAP_PROCESS_SLEEP)
            ASSERT_LT(++nb_blocks, 2000);
        EXPECT_EQ(clap.process(4000), CLAP_PROCESS_SLEEP);
        EXPECT_EQ(clap.peak(), 0);
        EXPECT_EQ(clap.output.constant_mask, 3u);
        EXPECT_EQ(clap.process(64, {chord.back()}), CLAP_PROCESS_CONTINUE);
    }
}

TEST(Clap, ControllersTellOfWhatTheyMove) {
    hosted clap;
    clap.process(
        64, {midi_at(10, {0xB0, 7, 127}), midi_at(9, {0xB0, 84, 100}), midi_at(11, {0xB1, 7, 0})});
    ASSERT_EQ(clap.sent.size(), 2u);
    for (const auto& [index, id] : {std::pair{0u, volume}, {1u, vibrato}}) {
        const any_event& event = clap.sent[index];
        EXPECT_EQ(event.header.type, CLAP_EVENT_PARAM_VALUE);
        EXPECT_EQ(event.header.flags, CLAP_EVENT_DONT_RECORD);
        EXPECT_EQ(event.value.param_id, id);
        EXPECT_EQ(event.value.value, 1.0);
        EXPECT_EQ(clap.value(id), 1.0);
    }
}

TEST(Clap, NullQueuesAndRatesThatNobodyHasAreBorne) {
    hosted clap;
    clap.process(4000, {note_at(0, CLAP_EVENT_NOTE_ON, 60)});
    EXPECT_GT(clap.peak(), 0);
    clap.plugin->reset(clap.plugin);
    clap.process(1000);
    EXPECT_TRUE(clap.sent.empty());
    EXPECT_EQ(clap.peak(), 0) << "after a reset";

    float* no_channels[] = {nullptr, nullptr};
    clap_audio_buffer buffers[] = {{no_channels, nullptr, 2, 0, 0}, {nullptr, nullptr, 2, 0, 0}};
    const events moved = {value_at(30, volume, 0.25)};
    for (clap_audio_buffer* buffer :
         {&buffers[0], &buffers[1], static_cast<clap_audio_buffer*>(nullptr)})
        for (const events* in : {&moved, static_cast<const events*>(nullptr)})
            EXPECT_EQ(clap.process_into(buffer, 64, in), CLAP_PROCESS_ERROR);
    EXPECT_EQ(clap.value(volume), 0.25);
    EXPECT_EQ(clap.process(0, moved), CLAP_PROCESS_SLEEP) << "no frames";
    clap.params().flush(clap.plugin, nullptr, nullptr);

    for (const double rate : {not_a_number, -1.0, 0.0, 1e300, 999.0, 1e6 + 1, 1000.0, 1e6}) {
        clap.plugin->deactivate(clap.plugin);
        clap.activate(rate);
        const auto status = clap.process(2000, {note_at(0, CLAP_EVENT_NOTE_ON, 60, 0, 1)});
        const bool is_played = rate == 1000.0 || rate == 1e6;
        EXPECT_EQ(clap.peak() > 0, is_played) << rate;
        EXPECT_EQ(status == CLAP_PROCESS_CONTINUE, is_played) << rate;
        EXPECT_EQ(clap.sent.size(), is_played ? 0u : 1u) << rate;
    }
}

TEST(Clap, ParametersAreToldOfAndTextsReadBack) {
    const hosted clap;
    const clap_plugin_params& params = clap.params();
    const auto text_of = [&](clap_id id, double value) {
        char text[16] = "none";
        params.value_to_text(clap.plugin, id, value, text, sizeof text);
        return std::string(text);
    };
    std::string names;
    for (clap_id id = 0; id < params.count(clap.plugin); ++id) {
        clap_param_info info;
        ASSERT_TRUE(params.get_info(clap.plugin, id, &info));
        names += std::string(info.name) + ' ';
        EXPECT_EQ(info.id, id);
        EXPECT_EQ(clap.value(id), info.default_value) << info.name;
        const bool is_switch = (info.flags & CLAP_PARAM_IS_STEPPED) != 0;
        EXPECT_EQ(is_switch, id < volume) << info.name;
        EXPECT_EQ(text_of(id, 7) == "ON", is_switch);
        const int nb_steps = is_switch ? 1 : 256;
        for (int step = 0; step <= nb_steps; ++step) {
            const double value = static_cast<double>(step) / nb_steps;
            double read = -1;
            EXPECT_TRUE(params.text_to_value(clap.plugin, id, text_of(id, value).c_str(), &read));
            EXPECT_EQ(text_of(id, read), text_of(id, value)) << info.name;
            EXPECT_NEAR(read, value, 2e-5) << info.name;
        }
        double untouched = 3;
        EXPECT_FALSE(params.text_to_value(clap.plugin, id, "loud", &untouched));
        EXPECT_EQ(text_of(id, not_a_number), "none");
    }
    EXPECT_EQ(names, "Flute Bright Brass Mellow Vibrato BassChords Volume Contour Bass Split ");
    double value = 0;
    for (const clap_id id : {10u, CLAP_INVALID_ID})
        EXPECT_FALSE(params.get_value(clap.plugin, id, &value)) << id;

    for (const char* id : {clap_remote_controls_id, clap_remote_controls_draft_id}) {
        const auto& pages = clap.extension<clap_plugin_remote_controls>(id);
        ASSERT_EQ(pages.count(clap.plugin), 2u);
        clap_remote_controls_page page;
        ASSERT_TRUE(pages.get(clap.plugin, 1, &page));
        EXPECT_EQ(page.param_ids[1], split);
        EXPECT_EQ(page.param_ids[2], CLAP_INVALID_ID);
        EXPECT_FALSE(pages.get(clap.plugin, 2, &page));
    }
}

TEST(Clap, StatesComeBackWhole) {
    hosted first, second(48000, "2");
    const auto& state = first.extension<clap_plugin_state>(clap_state_id);
    const auto load = [&](clap_stream from) {
        const clap_istream in = from.input();
        return state.load(second.plugin, &in);
    };
    first.process(64, {value_at(0, volume, 0.123), value_at(0, vibrato, 1)});
    clap_stream saved = stream_of(""), failing = stream_of("", 9);
    const clap_ostream out = saved.output(), broken = failing.output();
    ASSERT_TRUE(state.save(first.plugin, &out));
    EXPECT_FALSE(state.save(first.plugin, &broken));

    const std::string& text = saved.bytes;
    for (const clap_stream& damaged :
         {stream_of(""), stream_of(text.substr(1)), stream_of(text, text.size() / 2),
          stream_of(text, text.size()), stream_of(std::string(1 << 20, 'x'))})
        EXPECT_FALSE(load(damaged)) << damaged.bytes;
    EXPECT_EQ(second.value(volume), 0.5);
    EXPECT_EQ(second.nb_rescans, 0);
    second.process(64, {note_at(0, CLAP_EVENT_NOTE_ON, 60)});
    EXPECT_TRUE(load(saved));
    EXPECT_EQ(second.nb_rescans, 1);
    EXPECT_EQ(second.value(volume), first.value(volume));
    second.process(64);
    ASSERT_EQ(second.sent.size(), 1u) << "another instrument, whose keys are up";
    EXPECT_EQ(second.sent[0].header.type, CLAP_EVENT_NOTE_END);

    clap_stream again = stream_of("");
    const clap_ostream copy = again.output();
    EXPECT_TRUE(state.save(second.plugin, &copy));
    EXPECT_EQ(again.bytes, text);
}

/// Of each preset that the library lists its key, and how its text begins.
std::vector<std::pair<std::string, std::string>> told;

TEST(Clap, RegistrationsAreListedAndLoaded) {
    hosted clap;
    told.clear();
    const auto& factory = *static_cast<const clap_preset_discovery_factory*>(
        clap_library().get_factory(clap_preset_discovery_factory_id));
    clap_preset_discovery_indexer indexer{};
    indexer.declare_location = [](const auto*, const clap_preset_discovery_location* place) {
        return place->kind == 1 && place->flags == CLAP_PRESET_DISCOVERY_IS_FACTORY_CONTENT;
    };
    clap_preset_discovery_metadata_receiver receiver{};
    receiver.on_error = [](const auto*, std::int32_t, const char*) {};
    receiver.begin_preset = [](const auto*, const char* name, const char* load_key) {
        told.emplace_back(load_key, std::string("# ") + name);
        return told.size() != 13; // enough
    };
    receiver.add_plugin_id = [](const auto*, const clap_universal_plugin_id* loader) {
        EXPECT_EQ(std::string(loader->abi) + ' ' + loader->id, "clap example.quenmar.tindelwax");
    };
    receiver.set_description = [](const auto*, const char* comment) {
        told.back().second += std::string("\n# ") + comment + '\n';
    };
    const auto* const provider =
        factory.create(&factory, &indexer, factory.get_descriptor(&factory, 0)->id);
    EXPECT_TRUE(provider->init(provider));
    for (const auto& [kind, nb_told] : {std::pair{0u, 0u}, {1u, 12u}, {1u, 13u}}) {
        EXPECT_EQ(provider->get_metadata(provider, kind, nullptr, &receiver), kind == 1);
        EXPECT_EQ(told.size(), nb_told);
    }
    provider->destroy(provider);
    told.pop_back();

    const auto& load = clap.extension<clap_plugin_preset_load>(clap_preset_load_id);
    for (const auto& [key, beginning] : told) {
        EXPECT_TRUE(load.from_location(clap.plugin, 1, nullptr, key.c_str()));
        for (const auto& [kind, unknown] : {std::pair{1u, "loud"}, {1u, nullptr}, {0u, "glass"}})
            EXPECT_FALSE(load.from_location(clap.plugin, kind, nullptr, unknown));
        std::ostringstream text(beginning, std::ios::ate);
        clap_param_info info;
        for (clap_id id = 0; clap.params().get_info(clap.plugin, id, &info); ++id) {
            text << info.name << '=';
            id < volume ? text << (clap.value(id) == 1 ? "on" : "off") : text << clap.value(id);
            text << '\n';
        }
        std::ifstream file(REGISTRATIONS "/" + key + ".txt");
        EXPECT_EQ(text.str(), std::string(std::istreambuf_iterator{file}, {}));
        EXPECT_EQ(clap.loaded, key);
    }
    EXPECT_EQ(std::pair(clap.nb_rescans, clap.nb_refused), std::pair(12, 36));
}

TEST(Clap, TheDoorOpensForOneInstrument) {
    hosted held;
    EXPECT_EQ(clap_library().get_factory("clap.unknown"), nullptr);
    EXPECT_EQ(clap_library().get_factory(clap_preset_discovery_factory_draft_id),
              clap_library().get_factory(clap_preset_discovery_factory_id));
    EXPECT_EQ(held.plugin->get_extension(held.plugin, clap_preset_load_draft_id),
              held.plugin->get_extension(held.plugin, clap_preset_load_id));
    const auto* const factory =
        static_cast<const clap_plugin_factory*>(clap_library().get_factory(clap_plugin_factory_id));
    EXPECT_EQ(factory->get_plugin_count(factory), 1u);
    EXPECT_EQ(factory->get_plugin_descriptor(factory, 1), nullptr);
    EXPECT_EQ(factory->create_plugin(factory, nullptr, "clap.unknown"), nullptr);
    EXPECT_EQ(held.plugin->get_extension(held.plugin, "clap.unknown"), nullptr);
}

} // namespace
