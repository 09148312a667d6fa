#include "plugin/effect.h"
#include "plugin/event_list.h"
#include "tests/conformance/events.h"
#include "tests/lv2/lv2_host.h"

#include <climits>
#include <cstdlib>
#include <functional>
#include <limits>

namespace {

constexpr std::size_t volume = 6, split = 9;
constexpr const char* instrument_property = TINDELWAX_URI "#instrument";
constexpr const char* ports_property = TINDELWAX_URI "#ports";
const std::vector<int> strike{0x90, 60, 100};
const std::vector<int> loudest{0xB0, 7, 127};

struct Lv2 : testing::Test {
    Lv2() { setenv("TINDELWAX_SEED", "1", 1); }
};

/// What the state says of the volume, controller and channel left out.
std::string saved_volume(const lv2_host& host) {
    const std::string text = host.save().at(urid(instrument_property)).bytes;
    const auto begin = text.find("Volume ") + 7;
    return text.substr(begin, text.find(' ', begin) - begin);
}

bool sounds(const lv2_host& host) {
    return std::ranges::any_of(host.outputs[0], [](float sample) { return sample != 0; });
}

TEST_F(Lv2, PlaysTheSamplesOfTheVst) {
    struct block {
        std::size_t nb_frames;
        score events;
        std::size_t port = split; ///< that stands at `value`; the outputs differ
        float value = 0;
    };
    const block song[] = {
        {64, {note_on(0, 60), note_on(63, 24)}},
        {100, {note_on(99, 64), controller(50, 84, 127), note_off(5, 60), note_on(98, 67)}},
        {1, {note_on(0, 72)}},
        {0, {note_on(0, 40)}},
        {257, {note_on(-5, 25), note_off(1L << 31, 64), controller(128, 7, 90)}},
        {512, {{100, {0xC0, 3, 0}}, {101, {0xE0, 1, 2}}, note_on(200, 0xFF)}, volume, 0.25f},
        {4096,
         {controller(2000, 120, 0), note_on(2001, 48), controller(2002, 86, 100)},
         volume,
         0.25f},
        {480, {}, volume, 0.75f},
    };
    for (const float rate : {44100.0f, 48000.0f, 96000.0f, 500.0f}) {
        lv2_host lv2{rate};
        host_answers answers = answer_version;
        const effect vst{TEST_INSTRUMENT, answers};
        vst.ask(effSetSampleRate, 0, 0, nullptr, rate);
        vst.ask(effSetBlockSize, 0, 4096);
        vst.ask(effMainsChanged, 0, 1);
        bool has_sounded = false;
        for (const auto& [nb_frames, events, port, value] : song) {
            atom_sequence sequence;
            event_list list;
            for (const midi& event : events) {
                sequence.add(event.frame, {event.bytes.begin(), event.bytes.end()});
                list.add_midi(message_of(event),
                              static_cast<int>(std::min(event.frame, long{INT_MAX})));
            }
            if (lv2.ports[port] != value)
                vst.set(static_cast<VstInt32>(port), value);
            lv2.ports[port] = value;
            lv2.run(nb_frames, &sequence.head());
            std::array expected{std::vector(nb_frames, 7.0f), std::vector(nb_frames, 7.0f)};
            float* buffers[] = {expected[0].data(), expected[1].data()};
            vst.ask(effProcessEvents, 0, 0, list.records());
            vst.record()->processReplacing(vst.record(), nullptr, buffers,
                                           static_cast<VstInt32>(nb_frames));
            EXPECT_EQ(lv2.outputs, expected) << rate << " Hz, " << nb_frames << " frames";
            has_sounded |= sounds(lv2);
        }
        EXPECT_EQ(has_sounded, rate > 1000) << rate << " Hz";
    }
}

TEST_F(Lv2, WhatNoEventSaysIsNotPlayed) {
    using addition = std::function<void(atom_sequence&)>;
    const auto event = [](const std::vector<int>& bytes, const char* type = LV2_MIDI__MidiEvent,
                          std::uint32_t more = 0) -> addition {
        return [=](atom_sequence& events) { events.add(0, bytes, type, more); };
    };
    const auto head = [&](std::uint32_t size, const char* type) -> addition {
        return [=](atom_sequence& events) {
            events.add(0, strike);
            events.head().atom = {size, urid(type)};
        };
    };
    constexpr std::uint32_t size = sizeof(LV2_Atom_Sequence_Body) + sizeof(LV2_Atom_Event) + 3;
    std::vector<std::pair<addition, bool>> rows{
        {event(strike), true},
        {event(strike, LV2_ATOM__Chunk), false},
        {event({}), false},
        {event({0x90}), false},
        {event({0x90, 60}), false},
        {event({0x90, 60, 100, 0}), false},
        {event(strike, LV2_MIDI__MidiEvent, 6), false}, // longer than the sequence
        {event(strike, LV2_MIDI__MidiEvent, UINT32_MAX - 3), false},
        {head(size, LV2_ATOM__Chunk), false},
        {head(size, LV2_ATOM__Sequence), true}};
    for (std::uint32_t cut = 0; cut < size; ++cut)
        rows.emplace_back(head(cut, LV2_ATOM__Sequence), false);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        lv2_host host;
        atom_sequence events;
        rows[i].first(events);
        host.run(480, &events.head());
        EXPECT_EQ(sounds(host), rows[i].second) << "row " << i;
    }
}

TEST_F(Lv2, WhatMidiMovedStaysUntilThePortMoves) {
    lv2_host host;
    const auto volume_after = [&host](float port_value) {
        host.ports[volume] = port_value;
        host.run(64);
        return saved_volume(host);
    };
    EXPECT_EQ(volume_after(0.25f), "0.25");
    host.run(64, loudest);
    EXPECT_EQ(volume_after(0.25f), "1");
    EXPECT_EQ(volume_after(std::numeric_limits<float>::quiet_NaN()), "1");
    EXPECT_EQ(volume_after(std::numeric_limits<float>::infinity()), "1");
    EXPECT_EQ(volume_after(0.25f), "1") << "it has said nothing else";
    EXPECT_EQ(volume_after(-3), "0");
    EXPECT_EQ(volume_after(1e30f), "1");
    EXPECT_EQ(volume_after(0.0123f), "0.0123");
    host.run(64, loudest);
    const kept_state kept = host.save();

    lv2_host again;
    again.ports[volume] = 0.0123f + 5e-9f; // as a text has kept it
    EXPECT_EQ(again.restore(kept), LV2_STATE_SUCCESS);
    again.run(64);
    EXPECT_EQ(saved_volume(again), "1") << "the project says what it said";
    EXPECT_EQ(again.restore({}), LV2_STATE_SUCCESS);
    again.run(64);
    EXPECT_EQ(saved_volume(again).substr(0, 6), "0.0123") << "a preset is its ports' values";
}

TEST_F(Lv2, AProjectIsTheSameInstrumentAgain) {
    unsetenv("TINDELWAX_SEED");
    lv2_host first, second{44100};
    EXPECT_EQ(first.save().size(), 1u) << "before the ports said anything";
    first.run(64, loudest);
    kept_state kept = first.save();
    ASSERT_EQ(kept.size(), 2u);
    const kept_property taken = kept.at(urid(instrument_property));
    const kept_property own = second.save().at(urid(instrument_property));
    const std::pair<kept_property, LV2_State_Status> refused[] = {
        {{taken.bytes, urid(LV2_ATOM__Chunk)}, LV2_STATE_ERR_BAD_TYPE},
        {{taken.bytes.substr(1), taken.type}, LV2_STATE_ERR_UNKNOWN},
        {{"", taken.type}, LV2_STATE_ERR_UNKNOWN},
    };
    for (const auto& [property, status] : refused) {
        EXPECT_EQ(second.restore({{urid(instrument_property), property}}), status);
        EXPECT_EQ(second.save().at(urid(instrument_property)), own);
    }
    kept.at(urid(ports_property)).bytes.pop_back(); // is not believed, and then the ports count
    EXPECT_EQ(second.restore(kept), LV2_STATE_SUCCESS);
    EXPECT_EQ(second.save().at(urid(instrument_property)), taken);
    second.run(64);
    EXPECT_EQ(saved_volume(second), "0.5");
}

TEST_F(Lv2, BearsWhatAHostLeavesOut) {
    EXPECT_EQ(lv2_entry(1), nullptr);
    const LV2_Descriptor* const plugin = lv2_entry(0);
    const LV2_Feature other{"urn:other", nullptr};
    const LV2_Feature* const features[] = {&other, nullptr};
    EXPECT_EQ(plugin->instantiate(plugin, 48000, "", features), nullptr);
    EXPECT_EQ(plugin->extension_data("urn:other"), nullptr);

    lv2_host host;
    for (const std::uint32_t port : {port_first_parameter + 10, UINT32_MAX, UINT32_MAX - 10})
        host.connect(port, &host);
    for (std::uint32_t i = 0; i < nb_parameters; ++i)
        host.connect(port_first_parameter + i, nullptr);
    atom_sequence events;
    events.add(0, strike);
    host.connect(port_midi, &events.head());
    std::array<float, 64> output{};
    for (const bool has_left : {false, true})
        for (const bool has_right : {false, !has_left}) {
            host.connect(port_left, has_left ? output.data() : nullptr);
            host.connect(port_right, has_right ? output.data() : nullptr);
            plugin->run(host.instance, output.size());
        }
    host.run(4800);
    EXPECT_GT(std::ranges::max(host.outputs[0]), 0.001f) << "the note has waited for outputs";
    plugin->activate(host.instance);
    host.run(48000);
    host.run(64);
    EXPECT_LT(std::ranges::max(host.outputs[0]), 1e-5f) << "nobody holds it any more";
}

} // namespace
