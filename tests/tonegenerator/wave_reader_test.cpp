#include "tonegenerator/wave_reader.h"

#include "plain/tone_generator.h"
#include "tests/tonegenerator/tables.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

namespace {

using bank_ptr = std::unique_ptr<oscillators_bank, decltype(&oscillators_bank_free)>;

/// A whole ratio reads the very positions, another one interpolates like the plain form.
void expect_chunk(const oscillator& osc, rate_pair rates, std::uint64_t phase) {
    wave_scratch scratch;
    const wave_reader reader = wave_reader_create(osc, rates.engine);
    const float* samples = wave_reader_read(reader, static_cast<std::uint32_t>(phase), scratch);
    const std::vector<float>& table = osc.wav.samples;
    plain_wave_reader plain(osc, rates.engine, static_cast<std::uint32_t>(phase));
    const auto m = static_cast<std::uint64_t>(rates.table / rates.engine);
    for (std::size_t i = 0; i < wave_reader_chunk; ++i)
        if (rates.table % rates.engine == 0)
            ASSERT_EQ(samples[i], table[(phase + i) * m % table.size()]) << i;
        else // some 1e11 table samples from the start a double resolves 1e-5 of one
            ASSERT_NEAR(static_cast<double>(samples[i]), plain.next(), 2e-4) << i;
}

TEST(WaveReader, ReadsTheTableAtThePositionsOfItsPhase) {
    for (const rate_pair rates : rate_pairs) {
        const bank_ptr p_bank{create_noise_bank(rates.table, table_lengths), oscillators_bank_free};
        for (const oscillator& osc : p_bank->oscs)
            for (const std::uint32_t phase :
                 {0u, 1u, 871u, 872u, 100003u, 0u - 294967296u, 0u - 6u}) {
                SCOPED_TRACE(std::to_string(rates.engine) + " Hz, table of "
                             + std::to_string(osc.wav.sample_long) + ", phase "
                             + std::to_string(phase));
                expect_chunk(osc, rates, phase);
            }
    }
}

TEST(WaveReader, ATableWithoutSamplesIsSilent) {
    const bank_ptr p_bank{create_noise_bank(384000, std::array{0}), oscillators_bank_free};
    for (const int rate : {48000, 32000}) {
        wave_scratch scratch;
        scratch.fill(7.0f);
        const wave_reader reader = wave_reader_create(p_bank->oscs[0], rate);
        const float* samples = wave_reader_read(reader, 5, scratch);
        EXPECT_EQ(std::count(samples, samples + wave_reader_chunk, 0.0f), wave_reader_chunk);
    }
}

} // namespace
