#include "tonegenerator/tonegenerator.h"

#include "tonegenerator/wave_sum.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace {

bool can_play(const tonegenerator* p_tg, unsigned osc, float gain) {
    return osc < p_tg->has_curve.size() && std::isfinite(gain);
}

/// The part of a block's samples at frames start + i, i < nframes.
std::span<float> frames_of(std::span<float> block, std::size_t start, std::size_t nframes) {
    start = std::min(start, block.size());
    return block.subspan(start, std::min(nframes, block.size() - start));
}

void insert(oscillator_set& set, unsigned osc) {
    if (osc / 64 < set.size())
        set[osc / 64] |= std::uint64_t{1} << osc % 64;
}

bool contains(const oscillator_set& set, unsigned osc) { return set[osc / 64] >> osc % 64 & 1u; }

bool is_silent(const tonegenerator* p_tg) {
    std::uint64_t any = 0;
    for (std::size_t i = 0; i < p_tg->held.size(); ++i)
        any |= p_tg->held[i] | p_tg->in_block[i];
    return any == 0;
}

std::span<float> curve_of(const tonegenerator* p_tg, std::size_t osc) {
    return frames_of(p_tg->non_sustained_oscillators_conductance[osc], 0,
                     static_cast<std::size_t>(p_tg->block_size));
}

std::span<const int> oscillators_with_curves(const tonegenerator* p_tg) {
    return std::span(p_tg->non_sustained_oscillators)
        .first(static_cast<std::size_t>(p_tg->nb_non_sustained_oscs));
}

void clear_curves(tonegenerator* p_tg) {
    for (const int number : oscillators_with_curves(p_tg)) {
        const auto osc = static_cast<std::size_t>(number);
        p_tg->whole[osc].nb_curves = 0;
        if (p_tg->has_curve[osc])
            std::ranges::fill(curve_of(p_tg, osc), 0.0f);
        p_tg->has_curve[osc] = 0;
    }
    p_tg->nb_non_sustained_oscs = 0;
}

void register_curves(tonegenerator* p_tg, unsigned osc) {
    insert(p_tg->in_block, osc);
    p_tg->non_sustained_oscillators[static_cast<std::size_t>(p_tg->nb_non_sustained_oscs++)] =
        static_cast<int>(osc);
}

/// Returns whether the oscillator's curves are whole ones so far and have room for another.
bool add_whole_curve(tonegenerator* p_tg, unsigned osc, const whole_curve& curve) {
    whole_curves& whole = p_tg->whole[osc];
    if (p_tg->has_curve[osc] || whole.nb_curves == whole.curves.size())
        return false;
    if (whole.nb_curves == 0)
        register_curves(p_tg, osc);
    whole.curves[whole.nb_curves++] = curve;
    return true;
}

void add_curve(std::span<float> sum, const float* p_env, float conductance) {
    if (!p_env) {
        for (float& gain : sum)
            gain += conductance;
        return;
    }
    for (std::size_t i = 0; i < sum.size(); ++i)
        sum[i] += p_env[i] * conductance;
}

/// From here on the oscillator's curves are laid down, the whole ones that it has received first.
void lay_down_curves(tonegenerator* p_tg, unsigned osc) {
    whole_curves& whole = p_tg->whole[osc];
    if (whole.nb_curves == 0 && !p_tg->has_curve[osc])
        register_curves(p_tg, osc);
    for (const whole_curve& curve : std::span(whole.curves).first(whole.nb_curves))
        add_curve(curve_of(p_tg, osc), curve.table, curve.conductance);
    whole.nb_curves = 0;
    p_tg->has_curve[osc] = 1;
}

std::unique_ptr<buffers> create_buffers(int block_size) {
    return std::unique_ptr<buffers>(buffers_create("tonegenerator_buffers", block_size));
}

/// Gives every oscillator of the bank a curve; curves of an earlier, larger bank stay.
void add_curve_buffers(tonegenerator* p_tg) {
    auto& curves = p_tg->non_sustained_oscillators_conductance;
    const auto nb_oscs = static_cast<std::size_t>(p_tg->oscs_bank->nb_oscs);
    const std::size_t nb_registered = curves.size();
    if (nb_oscs <= nb_registered)
        return;
    curves.resize(nb_oscs); // the buffer set holds the elements' addresses: register them anew
    p_tg->p_buffers = create_buffers(p_tg->p_buffers->block_size);
    for (auto& curve : curves)
        buffers_add(p_tg->p_buffers.get(), "NON SUSTAINED BUFFER", &curve);
}

/// What an oscillator with gains of this block alone plays from frame `start` of it on, where its
/// wave lies at `samples`: `nframes`, at most a chunk.
gained_wave play_in_block(tonegenerator* p_tg, unsigned osc, const float* samples,
                          std::size_t start, std::size_t nframes) {
    float gain = p_tg->held_conductance[osc];
    const int position = p_tg->sustained_positions[osc];
    if (position >= 0)
        gain += p_tg->sustained_oscillators_conductance[static_cast<std::size_t>(position)];
    const auto played = std::span(p_tg->scratches[osc]).first(nframes);
    if (p_tg->whole[osc].nb_curves > 0) {
        whole_curves_apply(p_tg->whole[osc], start, gain, samples, played);
    } else if (p_tg->has_curve[osc]) {
        const float* curve = &p_tg->non_sustained_oscillators_conductance[osc][start];
        for (std::size_t i = 0; i < nframes; ++i)
            played[i] = samples[i] * (curve[i] + gain);
    } else {
        return {samples, gain};
    }
    return {played.data(), 1.0f};
}

/// What the oscillators play from frame `start` of the block on, `nframes` of it at most a chunk.
void play(tonegenerator* p_tg, std::span<const unsigned> oscillators, std::size_t start,
          std::size_t nframes, std::span<gained_wave> waves) {
    const std::uint32_t phase = p_tg->global_phase_index + static_cast<std::uint32_t>(start);
    const wave_reader* readers = p_tg->readers.data();
    wave_scratch* scratches = p_tg->scratches.data();
    const float* held = p_tg->held_conductance.data();
    for (std::size_t i = 0; i < waves.size(); ++i) {
        const unsigned osc = oscillators[i];
        const float* samples = wave_reader_read(readers[osc], phase, scratches[osc]);
        if (contains(p_tg->in_block, osc))
            waves[i] = play_in_block(p_tg, osc, samples, start, nframes);
        else // as most mostly do
            waves[i] = {samples, held[osc]};
    }
}

/// The oscillators of the range that received anything, in the order of their numbers.
std::span<const unsigned> oscillators_in_use(const tonegenerator* p_tg, unsigned osc_start,
                                             unsigned osc_end,
                                             std::span<unsigned, max_nb_buffers> numbers) {
    std::size_t nb_in_use = 0;
    for (unsigned first = 0; first < numbers.size() && first <= osc_end; first += 64) {
        std::uint64_t in_use = p_tg->held[first / 64] | p_tg->in_block[first / 64];
        if (osc_start > first)
            in_use &= osc_start - first < 64 ? ~std::uint64_t{0} << (osc_start - first) : 0;
        if (osc_end - first < 63)
            in_use &= (std::uint64_t{2} << (osc_end - first)) - 1;
        for (; in_use != 0; in_use &= in_use - 1)
            numbers[nb_in_use++] = first + static_cast<unsigned>(std::countr_zero(in_use));
    }
    return numbers.first(nb_in_use);
}

} // namespace

tonegenerator* tonegenerator_create(const char* name) {
    return new tonegenerator{.name = name, .p_buffers = create_buffers(0)};
}

void tonegenerator_free(tonegenerator* p_tg) { delete p_tg; }

void tonegenerator_set_sampling_rate(tonegenerator* p_tg, int sampling_rate) {
    p_tg->global_phase_index = 0;
    p_tg->sample_rate = sampling_rate;
    tonegenerator_reset_sustain(p_tg);

    p_tg->oscs_bank.reset(p_tg->get_bank(sampling_rate));
    const auto nb_oscs = static_cast<std::size_t>(p_tg->oscs_bank->nb_oscs);
    p_tg->sustained_oscillators.assign(nb_oscs, 0);
    p_tg->sustained_oscillators_conductance.assign(nb_oscs, 0.0f);
    p_tg->sustained_positions.assign(nb_oscs, -1);
    p_tg->held_conductance.assign(nb_oscs, 0.0f);
    p_tg->held = {};
    p_tg->non_sustained_oscillators.assign(nb_oscs, 0);
    p_tg->whole.assign(nb_oscs, {});
    p_tg->has_curve.assign(nb_oscs, 0);
    p_tg->scratches.resize(nb_oscs);
    p_tg->readers.clear();
    for (const oscillator& osc : p_tg->oscs_bank->oscs)
        p_tg->readers.push_back(wave_reader_create(osc, sampling_rate));
    add_curve_buffers(p_tg);
}

void tonegenerator_set_block_size(tonegenerator* p_tg, int block_size) {
    clear_curves(p_tg);
    p_tg->block_size = block_size;
    buffers_set_block_size(p_tg->p_buffers.get(), block_size);
}

void tonegenerator_use_block_size(tonegenerator* p_tg, int block_size) noexcept {
    if (block_size == p_tg->block_size)
        return;
    clear_curves(p_tg);
    p_tg->block_size = std::min(block_size, p_tg->p_buffers->block_size);
}

void tone_generator_add_held_oscillator(tonegenerator* p_tg, unsigned osc,
                                        float conductance) noexcept {
    if (!can_play(p_tg, osc, conductance))
        return;
    p_tg->held_conductance[osc] += conductance;
    insert(p_tg->held, osc);
}

void tone_generator_clear_held(tonegenerator* p_tg) noexcept {
    std::ranges::fill(p_tg->held_conductance, 0.0f);
    p_tg->held = {};
}

void tone_generator_add_sustained_oscillator(tonegenerator* p_tg, unsigned osc,
                                             float conductance) noexcept {
    if (!can_play(p_tg, osc, conductance))
        return;
    int& position = p_tg->sustained_positions[osc];
    if (position < 0) {
        position = p_tg->nb_sustained_oscs++;
        p_tg->sustained_oscillators[static_cast<std::size_t>(position)] = static_cast<int>(osc);
        insert(p_tg->in_block, osc);
    }
    p_tg->sustained_oscillators_conductance[static_cast<std::size_t>(position)] += conductance;
}

void tone_generator_add_non_sustained_oscillator(tonegenerator* p_tg, unsigned oscillator,
                                                 unsigned start_index, unsigned nframes,
                                                 const float* p_env, float conductance) noexcept {
    if (!can_play(p_tg, oscillator, conductance))
        return;
    const auto block = static_cast<unsigned>(std::max(p_tg->block_size, 0));
    if (p_env && start_index == 0 && nframes >= block
        && add_whole_curve(p_tg, oscillator, {p_env, conductance}))
        return;
    lay_down_curves(p_tg, oscillator);
    add_curve(frames_of(curve_of(p_tg, oscillator), start_index, nframes), p_env, conductance);
}

bool tone_generator_next(tonegenerator* p_tg, std::span<float> dest, unsigned osc_start,
                         unsigned osc_end) noexcept {
    if (is_silent(p_tg))
        return false;
    std::array<unsigned, max_nb_buffers> numbers;
    const auto in_use = oscillators_in_use(p_tg, osc_start, osc_end, numbers);
    if (in_use.empty())
        return false;
    std::array<gained_wave, max_nb_buffers> played;
    const auto waves = std::span(played).first(in_use.size());
    const std::size_t nframes =
        std::min(dest.size(), static_cast<std::size_t>(std::max(p_tg->block_size, 0)));
    for (std::size_t start = 0; start < nframes; start += wave_reader_chunk) {
        const auto chunk = frames_of(dest.first(nframes), start, wave_reader_chunk);
        play(p_tg, in_use, start, chunk.size(), waves);
        wave_sum_add(waves, chunk);
    }
    return true;
}

void tonegenerator_reset_sustain(tonegenerator* p_tg) noexcept {
    for (int i = 0; i < p_tg->nb_sustained_oscs; ++i) {
        const auto position = static_cast<std::size_t>(i);
        p_tg->sustained_positions[static_cast<std::size_t>(p_tg->sustained_oscillators[position])] =
            -1;
        p_tg->sustained_oscillators_conductance[position] = 0.0f;
    }
    p_tg->nb_sustained_oscs = 0;

    clear_curves(p_tg);
    p_tg->in_block = {};
}

void tonegenerator_process(const tonegenerator* p_tg, unsigned oscillator, std::span<float> dest,
                           unsigned start_index, unsigned nframes, const float* p_env,
                           float gain) noexcept {
    if (!can_play(p_tg, oscillator, gain))
        return;
    const auto segment = frames_of(dest, start_index, nframes);
    wave_scratch scratch;
    for (std::size_t start = 0; start < segment.size(); start += wave_reader_chunk) {
        const auto chunk = frames_of(segment, start, wave_reader_chunk);
        const auto phase = p_tg->global_phase_index + start_index + static_cast<unsigned>(start);
        const float* samples = wave_reader_read(p_tg->readers[oscillator], phase, scratch);
        for (std::size_t i = 0; i < chunk.size(); ++i)
            chunk[i] += p_env ? samples[i] * p_env[start + i] * gain : samples[i] * gain;
    }
}
