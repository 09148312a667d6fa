#include "tonegenerator/tonegenerator.h"

#include "plain/tone_generator.h"
#include "tests/noise_bank.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <gtest/gtest.h>
#include <limits>
#include <memory>

namespace {

/// Shorter than a chunk, odd and even, and the longest of the instrument.
constexpr int table_lengths[] = {1, 7, 64, 84, 168, 801, 872, 2000, 5393};

struct rate_pair {
    int engine, table; ///< Hz
};

/// Whole ratios, down to 1, and then others.
constexpr rate_pair rate_pairs[] = {{48000, 384000}, {44100, 352800},  {96000, 384000},
                                    {11025, 176400}, {384000, 384000}, {32000, 176400},
                                    {1000, 176400},  {1000000, 384000}};

constexpr unsigned nb_played = 256; ///< of a bank's oscillators, at most
constexpr float infinity = std::numeric_limits<float>::infinity();

struct ToneGenerator : testing::Test {
    std::unique_ptr<tonegenerator, decltype(&tonegenerator_free)> tg{tonegenerator_create("test"),
                                                                     tonegenerator_free};
    std::mt19937 random{1};
    std::vector<float> fast, plain;
    std::deque<std::vector<float>> envelopes; ///< of the block, which reads them last
    bool is_crowded = false; ///< most that is added are whole curves of one oscillator

    unsigned below(unsigned bound) { return static_cast<unsigned>(random() % bound); }

    void set_bank(rate_pair rates, unsigned nb_oscs) {
        tg->get_bank = [=](int) {
            std::vector<int> lengths(nb_oscs);
            for (std::size_t i = 0; i < nb_oscs; ++i)
                lengths[i] = table_lengths[i % std::size(table_lengths)];
            return create_noise_bank(rates.table, lengths);
        };
        tonegenerator_set_sampling_rate(tg.get(), rates.engine);
    }

    /// What one key adds: frames beyond the block, an oscillator that the bank has not, and a gain
    /// that is no number are among it, and add nothing.
    void contribute() {
        const auto block = static_cast<unsigned>(tg->block_size);
        const auto nb_oscs = static_cast<unsigned>(tg->oscs_bank->nb_oscs);
        unsigned osc = below(8) ? below(nb_oscs) : nb_oscs + below(2) * 0x7FFFFFFFu;
        unsigned start = below(2) ? below(block + 2) : 0;
        unsigned nframes = below(4) ? below(block + 1) : 0xFFFFFFFFu;
        const float unfit[] = {std::nanf(""), infinity, -infinity};
        const float gain = below(16) ? static_cast<float>(below(1000)) / 4000 : unfit[below(3)];
        const std::vector<float>& envelope = envelopes.emplace_back(noise(block, below(1000)));
        const float* p_env = below(2) ? envelope.data() : nullptr;
        unsigned kind = osc < nb_played ? below(3) : below(2);
        if (is_crowded && below(8))
            osc = 0, start = 0, nframes = block, p_env = envelope.data(), kind = 1;
        switch (kind) {
        case 0:
            tone_generator_add_sustained_oscillator(tg.get(), osc, gain);
            start = 0, nframes = block, p_env = nullptr;
            break;
        case 1:
            tone_generator_add_non_sustained_oscillator(tg.get(), osc, start, nframes, p_env, gain);
            break;
        default:
            tonegenerator_process(tg.get(), osc, fast, start, nframes, p_env, gain);
        }
        if (osc < std::min(nb_oscs, nb_played) && std::isfinite(gain) && start < block)
            plain_tonegenerator_process(tg.get(), osc, plain, start,
                                        std::min(nframes, block - start), p_env, gain);
    }

    void expect_plain_block(const std::string& where) {
        fast = plain = noise(static_cast<std::size_t>(tg->block_size), 1);
        envelopes.clear();
        is_crowded = below(2);
        for (int key = 0; key < 12; ++key)
            contribute();
        const unsigned last = below(static_cast<unsigned>(tg->oscs_bank->nb_oscs));
        tone_generator_next(tg.get(), fast, 0, last);
        tone_generator_next(tg.get(), fast, last + 1, 1000);
        tonegenerator_reset_sustain(tg.get());
        EXPECT_EQ(tg->nb_sustained_oscs + tg->nb_non_sustained_oscs, 0);
        for (std::size_t i = 0; i < fast.size(); ++i) // twelve keys, each read to 2e-4
            ASSERT_NEAR(fast[i], plain[i], 2e-3f) << where << ", frame " << i;
    }
};

TEST_F(ToneGenerator, PlaysWhatThePlainFormPlaysAtAnyRateOfAnyBankInAnyBlock) {
    constexpr unsigned bank_sizes[] = {2, 9, 3, 9, 300, 9};
    unsigned bank = 0;
    for (const rate_pair rates : rate_pairs) {
        set_bank(rates, bank_sizes[bank++ % std::size(bank_sizes)]);
        EXPECT_EQ(tg->global_phase_index, 0u);
        for (const int block_size : {1, 7, 64, 65, 509, 4096}) {
            tonegenerator_set_block_size(tg.get(), block_size);
            for (const std::uint32_t phase :
                 {0u, 871u, 0x7FFFFFFFu, 4000000000u, 0u - static_cast<unsigned>(block_size)}) {
                tg->global_phase_index = phase;
                expect_plain_block(std::to_string(rates.engine) + " Hz, block of "
                                   + std::to_string(block_size) + " at " + std::to_string(phase));
            }
        }
        for (int key = 0; key < 12; ++key) // what the next rate drops
            contribute();
    }
}

} // namespace
