#include "organ/organ.h"

#include "tests/organ/two_manual_organ.h"

#include <gtest/gtest.h>

namespace {

using texts = std::vector<std::string>;

/// Writes down every object's turn: "keybed 1" is the second keybed.
struct OrganTurns : testing::Test {
    texts turns;
    two_manual_organ twin;
    organ* const p_organ = twin.p_organ;

    OrganTurns() {
        twin.start();
        dsp_stack_add(
            p_organ->p_dsp_stack, [this](int rate) { note("stack rate", rate); },
            [this](int size) { note("stack size", size); }, nullptr, "last");
        for (int m = 0; m < static_cast<int>(nb_manuals); ++m) {
            p_organ->p_keybeds[static_cast<std::size_t>(m)]->p_env_attack->callback_generate =
                [=, this](envelope*) { note("keybed", m); };
            auto& get_bank = p_organ->p_tonegenerators[static_cast<std::size_t>(m)]->get_bank;
            get_bank = [=, this, inner = get_bank](int rate) {
                note("generator", m);
                return inner(rate);
            };
        }
        p_organ->set_sampling_rate_callback = [this](int rate) { note("instrument rate", rate); };
        p_organ->set_block_size_callback = [this](int size) {
            const bool all_know = p_organ->p_keybeds[lower]->block_size == size
                                  && p_organ->p_tonegenerators[lower]->block_size == size
                                  && p_organ->p_buffers->block_size == size
                                  && p_organ->p_filters[0]->block_size == size;
            note(all_know ? "instrument size" : "instrument too early", size);
        };
        turns.clear(); // what joining the stack told
    }

    void note(const std::string& who, int value) {
        turns.push_back(who + " " + std::to_string(value));
    }
};

TEST_F(OrganTurns, ARateReachesStackKeybedsGeneratorsInstrument) {
    organ_set_sampling_rate(p_organ, 44100);
    EXPECT_EQ(turns, (texts{"stack rate 44100", "keybed 0", "keybed 1", "generator 0",
                            "generator 1", "instrument rate 44100"}));
    EXPECT_EQ(p_organ->sampling_rate, 44100);
    EXPECT_EQ(p_organ->p_filters[0]->sample_rate, 44100);
}

TEST_F(OrganTurns, ABlockSizeReachesTheStackFirstAndTheInstrumentLast) {
    organ_set_block_size(p_organ, 32);
    EXPECT_EQ(turns, (texts{"stack size 32", "instrument size 32"}));
    EXPECT_EQ(p_organ->block_size, 32);
}

TEST_F(OrganTurns, RatesBelowOneAreIgnored) {
    for (const int rate : {0, -44100})
        organ_set_sampling_rate(p_organ, rate);
    EXPECT_EQ(turns, texts{});
    EXPECT_EQ(p_organ->sampling_rate, 48000);
}

TEST(Organ, ABlockFollowsTheHostsLengthAndMovesEveryPhase) {
    const two_manual_organ twin;
    twin.start();
    std::span<float> buffer;
    buffers_add(twin.p_organ->p_buffers, "work", &buffer);
    twin.p_organ->p_tonegenerators[lower]->global_phase_index = 0xFFFFFFFFu;
    std::uint32_t elapsed = 0;
    for (const std::size_t nb_frames : {512u, 100u, 0u, 100u}) {
        const auto [out_r, out_l] = twin.render(nb_frames);
        elapsed += static_cast<std::uint32_t>(nb_frames);
        EXPECT_EQ(out_r, std::vector<float>(nb_frames));
        EXPECT_EQ(out_l, std::vector<float>(nb_frames));
        EXPECT_EQ(buffer.size(), nb_frames > 0 ? nb_frames : 100u);
        EXPECT_EQ(twin.p_organ->p_tonegenerators[upper]->global_phase_index, elapsed);
        EXPECT_EQ(twin.p_organ->p_tonegenerators[lower]->global_phase_index, elapsed - 1);
    }
}

TEST(Organ, KeysSoundFromTheirFrameOnThroughTheirOwnManual) {
    const two_manual_organ twin;
    twin.start();
    twin.send(0x90, 61, 100, 50); // key 1 of the upper manual
    const auto [out_r, out_l] = twin.render();
    std::vector<float> expected(organ_block);
    const tonegenerator* p_tg = twin.p_organ->p_tonegenerators[upper];
    const float conductance =
        twin.p_organ->p_harpmatrixes[upper]->p_keys[1].p_contacts[0].conductance[0];
    for (std::size_t i = 50; i < expected.size(); ++i)
        expected[i] = p_tg->oscs_bank->oscs[1].wav.samples[i % 100] * conductance;
    EXPECT_EQ(out_r, expected);
    EXPECT_EQ(out_l, std::vector<float>(organ_block));
}

TEST(Organ, PanicSilencesEveryKeyAtOnce) {
    const two_manual_organ twin;
    twin.start();
    twin.send(0x90, 60, 100);
    twin.send(0x91, 36, 100);
    (void)twin.render();
    organ_panic(twin.p_organ);
    const auto [out_r, out_l] = twin.render();
    EXPECT_EQ(out_r, std::vector<float>(organ_block));
    EXPECT_EQ(out_l, std::vector<float>(organ_block));
}

TEST(Organ, OutputModeAndDefaultsReachTheInstrument) {
    two_manual_organ twin;
    organ_set_output_mode(twin.p_organ, 3); // no callback: nothing
    int mode = 0;
    twin.p_organ->set_output_mode_callback = [&](organ* p_self, int value) {
        mode = p_self == twin.p_organ ? value : -1;
    };
    organ_set_output_mode(twin.p_organ, 3);
    EXPECT_EQ(mode, 3);

    std::atomic<float> first = 0;
    std::atomic<float> second = 0;
    twin.add_parameter("first", &first, 1, 1);
    twin.add_parameter("second", &second, 1, 1);
    twin.p_organ->p_control->parameters[0]->default_value = 0.25f;
    twin.p_organ->p_control->parameters[1]->default_value = 0.75f;
    organ_set_default_values(twin.p_organ);
    EXPECT_EQ(first, 0.25f);
    EXPECT_EQ(second, 0.75f);
}

TEST(Organ, OneSeedGivesOneInstrument) {
    const auto resistors = [](const char* seed) {
        const two_manual_organ twin(seed);
        std::vector<unsigned> ohms;
        for (const harpmatrix* p_matrix : twin.p_organ->p_harpmatrixes)
            for (const key& wired : p_matrix->p_keys)
                ohms.push_back(wired.p_contacts[0].tapering[0]);
        ohms.push_back(static_cast<unsigned>(random15_next(twin.p_organ->random)));
        return ohms;
    };
    EXPECT_EQ(resistors("20"), resistors("20"));
    EXPECT_NE(resistors("20"), resistors("21"));
}

TEST(Organ, AnUnassembledEngineTakesControllersAndIsFreed) {
    organ* p_organ = organ_create("empty", 2, 1, 1, 7);
    EXPECT_EQ(p_organ->p_keybeds, std::vector<keybed*>(2));
    EXPECT_EQ(p_organ->p_filters, std::vector<filter*>(7));
    const char volume[] = {static_cast<char>(0xB0), 7, 127};
    organ_receive_midi_event(p_organ, volume, 0); // there is no registry
    const auto instrument = std::make_shared<int>(1);
    p_organ->p_instrument = instrument;
    organ_free(p_organ);
    EXPECT_EQ(instrument.use_count(), 1);
    organ_free(nullptr);
}

} // namespace
