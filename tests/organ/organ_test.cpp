#include "organ/organ.h"

#include "tests/organ/two_manual_organ.h"

#include <gtest/gtest.h>

namespace {

TEST(Organ, RatesBelowOneAreIgnored) {
    const two_manual_organ twin;
    twin.start();
    for (const int rate : {0, -44100})
        organ_set_sampling_rate(twin.p_organ, rate);
    EXPECT_EQ(twin.p_organ->sampling_rate, 48000);
    EXPECT_EQ(twin.p_organ->p_filters[0]->sample_rate, 48000);
}

TEST(Organ, ABlockFollowsTheHostsLengthAndMovesEveryPhase) {
    const two_manual_organ twin;
    twin.start();
    std::span<float> buffer;
    buffers_add(twin.p_organ->p_buffers.get(), "work", &buffer);
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
    const tonegenerator* p_tg = twin.p_organ->p_tonegenerators[upper].get();
    const float conductance =
        twin.p_organ->p_harpmatrixes[upper]->p_keys[1].p_contacts[0].conductance[0];
    for (std::size_t i = 50; i < expected.size(); ++i)
        expected[i] = p_tg->oscs_bank->oscs[1].wav.samples[i % 100] * conductance;
    EXPECT_EQ(out_r, expected);
    EXPECT_EQ(out_l, std::vector<float>(organ_block));
}

TEST(Organ, AnUnassembledEngineTakesControllersAndIsFreed) {
    organ* p_organ = organ_create("empty", 2, 1, 1, 7);
    const char volume[] = {static_cast<char>(0xB0), 7, 127};
    organ_receive_midi_event(p_organ, volume, 0); // there is no registry
    const auto instrument = std::make_shared<int>(1);
    p_organ->p_instrument = instrument;
    organ_free(p_organ);
    EXPECT_EQ(instrument.use_count(), 1);
    organ_free(nullptr);
}

} // namespace
