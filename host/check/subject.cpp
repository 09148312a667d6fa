#include "check/subject.h"

#include "probe/signal.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <random>

namespace {

/// A number that no plug-in makes: what still holds it was left unwritten.
constexpr std::uint32_t unwritten = 0x7FD5A5A5;

bool is_written(float sample) { return std::bit_cast<std::uint32_t>(sample) != unwritten; }

void send_message(const subject& played, std::array<std::uint8_t, 3> message) {
    event_list events;
    events.add_midi(message, 0);
    played.send(events);
}

} // namespace

subject::subject(trial& running, std::unique_ptr<plugin> opened)
    : running_{running}, plugin_{std::move(opened)} {
    heard_.resize(static_cast<std::size_t>(plugin_->nb_outputs()));
    VstTimeInfo& time = plugin_->time();
    time.tempo = 120;
    time.timeSigNumerator = time.timeSigDenominator = 4;
    time.sampleRate = usual_rate;
}

subject::subject(trial& running, library::in_the_end then)
    : subject(running, plugin_open(running.file, then)) {}

subject::subject(trial& running, int rate, int block) : subject(running) { prepare(rate, block); }

subject::~subject() = default;

void subject::prepare(int rate, int block) {
    suspend();
    rate_ = rate;
    block_ = block;
    running_.at(rate, block);
    plugin_->prepare(rate, block);
    resume();
}

void subject::strike(int note) const {
    send_message(*this, {0x90, static_cast<std::uint8_t>(note), 100});
}

void subject::let_go(int note) const {
    send_message(*this, {0x80, static_cast<std::uint8_t>(note), 64});
}

void subject::make_room(int nb_frames) {
    if (nb_frames <= room_)
        return;
    room_ = nb_frames;
    const auto length = static_cast<std::size_t>(nb_frames);
    memory_.clear();
    for (int i = 0; i < plugin_->nb_outputs(); ++i)
        memory_.push_back(std::make_unique<guarded_memory>((length + 4) * sizeof(float)));
    inputs_.assign(static_cast<std::size_t>(plugin_->nb_inputs()), std::vector<float>(length));
    p_inputs_.clear();
    std::minstd_rand noise(running_.seed);
    for (auto& input : inputs_) {
        std::ranges::generate(input,
                              [&] { return static_cast<float>(noise() % 2001) / 2000 - 0.5f; });
        p_inputs_.push_back(input.data());
    }
    p_outputs_.resize(memory_.size());
}

/// Plug-ins may count on an alignment to 16 bytes, as they get it from every host.
float* subject::output(std::size_t channel, int nb_frames) const {
    char* const end = memory_[channel]->data() + memory_[channel]->size();
    const auto nb_bytes = (static_cast<std::size_t>(nb_frames) * sizeof(float) + 15) / 16 * 16;
    return reinterpret_cast<float*>(end - nb_bytes);
}

void subject::run(int nb_frames) {
    for (std::size_t i = 0; i < memory_.size(); ++i)
        p_outputs_[i] = output(i, nb_frames);
    VstTimeInfo& time = plugin_->time();
    running_.at_frame(static_cast<long>(time.samplePos));
    plugin_->process(p_inputs_, p_outputs_, nb_frames);
    time.samplePos += nb_frames;
}

void subject::play(int nb_frames) {
    make_room(nb_frames);
    const auto end_of = [this](std::size_t channel) {
        return reinterpret_cast<float*>(memory_[channel]->data() + memory_[channel]->size());
    };
    for (std::size_t i = 0; i < memory_.size(); ++i)
        std::fill(output(i, nb_frames), end_of(i), std::bit_cast<float>(unwritten));
    run(nb_frames);
    for (std::size_t i = 0; i < memory_.size(); ++i) {
        float* const begin = output(i, nb_frames);
        heard_[i].insert(heard_[i].end(), begin, begin + nb_frames);
        wrote_beyond_ = wrote_beyond_ || std::any_of(begin + nb_frames, end_of(i), is_written);
    }
}

void subject::play_long(long nb_frames) {
    for (long done = 0; done < nb_frames; done += block_)
        play(static_cast<int>(std::min<long>(block_, nb_frames - done)));
}

void subject::expect_each(bool (*holds)(float), const char* what) {
    for (std::size_t i = 0; i < heard_.size(); ++i) {
        const auto found = std::ranges::find_if_not(heard_[i], holds);
        if (found == heard_[i].end())
            continue;
        running_.at_frame(static_cast<long>(found - heard_[i].begin()));
        running_.expect(false, "output " + std::to_string(i) + " " + what + " ("
                                   + std::to_string(std::ranges::count_if(
                                       found, heard_[i].end(),
                                       [holds](float sample) { return !holds(sample); }))
                                   + " samples)");
    }
}

void subject::expect_finite() {
    expect_each([](float sample) { return std::isfinite(sample) || !is_written(sample); },
                "holds infinity or what is no number");
}

void subject::expect_normal() {
    expect_each([](float sample) { return std::fpclassify(sample) != FP_SUBNORMAL; },
                "holds subnormal numbers");
}

void subject::expect_written() {
    expect_each(is_written, "is left unwritten");
    running_.expect(!wrote_beyond_, "it writes beyond the end of a block");
}

double subject::loudest() const {
    double largest = 0;
    for (const auto& channel : heard_)
        largest = std::max(largest, peak(channel));
    return largest;
}

void subject::expect_plays(bool must_sound) {
    forget();
    if (plugin_->is_instrument())
        strike(middle_note);
    play_long(rate_ / 4);
    expect_finite();
    running_.expect(!must_sound || loudest() > 0, "a note that is struck then is not heard");
    forget();
}

bool is_heard(trial& running) {
    subject played(running, usual_rate, usual_block);
    require_outputs(running, played);
    if (!played.tested().is_instrument())
        running.skip("it is no instrument");
    played.strike(middle_note);
    played.play_long(usual_rate / 4);
    return played.loudest() > 0;
}

void require_sound(trial& running) {
    if (!is_heard(running))
        running.skip("it is silent when middle C is struck on channel 1");
}

void require_outputs(const trial& running, const subject& played) {
    if (const std::string why = played.tested().why_silent(); !why.empty())
        running.skip("it " + why);
}
