#include "tonegenerator/wave_reader.h"

#include "plain/tone_generator.h"
#include "tests/tonegenerator/tables.h"

#include <gtest/gtest.h>
#include <memory>

namespace {

using bank_ptr = std::unique_ptr<oscillators_bank, decltype(&oscillators_bank_free)>;

/// Calls check(osc, rates, phase, samples) for a chunk of each table at telling phases.
template <typename Check>
void for_each_chunk(std::span<const rate_pair> ratios, Check check) {
    for (const rate_pair rates : ratios) {
        const bank_ptr p_bank{create_noise_bank(rates.table, table_lengths), oscillators_bank_free};
        for (const oscillator& osc : p_bank->oscs) {
            const wave_reader reader = wave_reader_create(osc, rates.engine);
            for (const std::uint32_t phase :
                 {0u, 1u, 871u, 872u, 100003u, 0u - 294967296u, 0u - 6u}) {
                SCOPED_TRACE(std::to_string(rates.engine) + " Hz, table of "
                             + std::to_string(osc.wav.sample_long) + ", phase "
                             + std::to_string(phase));
                wave_scratch scratch;
                check(osc, rates, phase, wave_reader_read(reader, phase, scratch));
            }
        }
    }
}

TEST(WaveReader, AWholeRatioReadsTheVeryPositions) {
    for_each_chunk(whole_ratios, [](const oscillator& osc, rate_pair rates, std::uint64_t phase,
                                    const float* samples) {
        const auto m = static_cast<std::uint64_t>(rates.table / rates.engine);
        for (std::size_t i = 0; i < wave_reader_chunk; ++i)
            ASSERT_EQ(samples[i], osc.wav.samples[(phase + i) * m % osc.wav.samples.size()]) << i;
    });
}

TEST(WaveReader, AnotherRatioInterpolatesLikeThePlainForm) {
    for_each_chunk(other_ratios, [](const oscillator& osc, rate_pair rates, std::uint32_t phase,
                                    const float* samples) {
        plain_wave_reader plain(osc, rates.engine, phase);
        for (std::size_t i = 0; i < wave_reader_chunk; ++i)
            // Some 1e11 table samples from the start a double resolves 1e-5 of one.
            ASSERT_NEAR(static_cast<double>(samples[i]), plain.next(), 2e-4) << i;
    });
}

TEST(WaveReader, ATableWithoutSamplesIsSilent) {
    const bank_ptr p_bank{create_noise_bank(384000, std::array{0}), oscillators_bank_free};
    for (const int rate : {48000, 32000}) {
        wave_scratch scratch;
        scratch.fill(7.0f);
        const float* samples =
            wave_reader_read(wave_reader_create(p_bank->oscs[0], rate), 5, scratch);
        EXPECT_EQ(std::vector<float>(samples, samples + wave_reader_chunk),
                  std::vector<float>(wave_reader_chunk))
            << rate << " Hz";
    }
}

} // namespace
