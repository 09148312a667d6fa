#include "organ/organ.h"

#include <gtest/gtest.h>
#include <memory>

namespace {

struct message {
    int status, data1, data2;
};

std::string text(const message& sent) {
    return std::to_string(sent.status) + " " + std::to_string(sent.data1) + " "
           + std::to_string(sent.data2);
}

/// Two manuals on channels 1 and 2, on the same notes.
struct Organ : testing::Test {
    std::unique_ptr<control, decltype(&control_free)> registry{control_create("Twin"),
                                                               control_free};
    std::unique_ptr<organ, decltype(&organ_free)> twin{organ_create("Twin", 2, 0, 0, 0),
                                                       organ_free};

    Organ() {
        twin->p_control = registry.get();
        for (int channel : {1, 2}) {
            auto& p_keybed = twin->p_keybeds[static_cast<std::size_t>(channel - 1)];
            p_keybed.reset(keybed_create(4, 60, "keys"));
            p_keybed->midi_channel = channel;
        }
        organ_set_block_size(twin.get(), 64);
    }

    void send(const message& sent) {
        const char bytes[] = {static_cast<char>(sent.status), static_cast<char>(sent.data1),
                              static_cast<char>(sent.data2)};
        organ_receive_midi_event(twin.get(), bytes, 7);
    }
};

TEST_F(Organ, MessagesReachTheKeybedsThatListen) {
    const struct {
        int upper_channel, omni;
        message sent;
        const char* keys; ///< state and frame of each manual's, of which both sound from 0 on
    } rows[] = {
        {1, 0, {0x80, 60, 1}, "R7A0"},  {1, 0, {0x81, 60, 1}, "A0R7"},
        {1, 0, {0x82, 60, 1}, "A0A0"},  {-1, 1, {0x82, 60, 1}, "R7A0"},
        {-1, 2, {0x82, 60, 1}, "A0A0"}, {1, 0, {0x91, 60, 1}, "A0A7"},
        {1, 0, {0xB0, 123, 0}, "R7A0"}, {1, 0, {0xB1, 123, 0}, "A0R7"},
        {1, 1, {0xB0, 123, 0}, "A0A0"}, {1, 2, {0xB0, 123, 0}, "A0A0"},
        {1, 0, {0xB0, 123, 1}, "A0A0"}, {1, 0, {0xB0, 120, 0}, "--A0"},
        {1, 0, {0xB1, 120, 0}, "A0--"}, {1, 0, {0xB5, 120, 0}, "A0A0"},
        {1, 1, {0xB5, 120, 0}, "----"}, {1, 2, {0xB5, 120, 0}, "----"},
        {1, 0, {0xB0, 120, 5}, "A0A0"}, {1, 0, {0xB0, 120, 200}, "A0A0"},
    };
    for (const auto& row : rows) {
        organ_panic(twin.get());
        twin->p_keybeds[0]->midi_channel = row.upper_channel;
        for (const auto& p_keybed : twin->p_keybeds) {
            keybed_receive_key_on(p_keybed.get(), 0, 1, 0);
            p_keybed->omni_mode = row.omni;
        }
        send(row.sent);
        std::string keys;
        for (const auto& p_keybed : twin->p_keybeds) {
            const playing_key& key = p_keybed->p_keys[0];
            keys += p_keybed->p_key_list->len == 0
                        ? "--"
                        : key.key_state + std::to_string(key.frame_index);
        }
        EXPECT_EQ(keys, row.keys) << text(row.sent) << ", omni mode " << row.omni;
    }
}

TEST_F(Organ, LearnBindsTheParameterTouchedLast) {
    const struct {
        int learning, touched;
        message sent;
        unsigned bound_cc;
    } rows[] = {
        {1, 0, {0xB3, 20, 5}, 20}, {1, 0, {0xB3, 120, 5}, 120}, {0, 0, {0xB3, 20, 5}, 7},
        {1, -1, {0xB3, 20, 5}, 7},                            // nothing is touched
        {1, 9, {0xB3, 20, 5}, 7},  {1, 0, {0xB3, 200, 5}, 7}, // no data byte
        {1, 0, {0xB3, 123, 0}, 7}, {1, 0, {0xB3, 120, 0}, 7},   {1, 0, {0x93, 20, 5}, 7},
    };
    for (const char* name : {"Volume", "Bass"})
        control_add_parameter(registry.get(), name);
    for (const auto& row : rows) {
        for (const auto& p_param : registry->parameters)
            p_param->midi_cc = 7, p_param->midi_channel = 1;
        control_update& update = *registry->p_control_update;
        update.midi_learning = row.learning;
        update.last_ui_control_changed_index = row.touched;
        update.nb_parameter_updated = 0;
        send(row.sent);
        const bool is_bound = row.bound_cc != 7;
        const parameter& touched = *registry->parameters[0];
        EXPECT_EQ(touched.midi_cc, row.bound_cc) << text(row.sent);
        EXPECT_EQ(touched.midi_channel, is_bound ? 4u : 1u) << text(row.sent);
        EXPECT_EQ(update.midi_learning, row.learning - is_bound) << text(row.sent);
        EXPECT_EQ(update.nb_parameter_updated, 0) << "what teaches does not move";
        send({0xB0, 7, 127});
        EXPECT_EQ(update.nb_parameter_updated, is_bound ? 1 : 2) << text(row.sent);
    }
}

TEST_F(Organ, AnEngineWithoutARegistryTakesControllersAndFreesItsInstrument) {
    twin->p_control = nullptr;
    send({0xB0, 7, 127});
    const auto instrument = std::make_shared<int>(1);
    twin->p_instrument = instrument;
    twin.reset();
    EXPECT_EQ(instrument.use_count(), 1);
}

} // namespace
