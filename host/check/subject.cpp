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

host_answers answers_of(command_host& host, subject::listener heard_by) {
    return [&host, heard_by = std::move(heard_by)](const host_call& call) {
        if (heard_by)
            heard_by(call);
        return host.answer(call);
    };
}

void send_message(const subject& played, std::array<std::uint8_t, 3> message) {
    event_list events;
    events.add_midi(message, 0);
    played.send(events);
}

} // namespace

subject::subject(trial& running, listener heard_by, library::in_the_end then)
    : running_{running},
      host_{.plugin_folder = absolute(running.file).parent_path().string()},
      effect_{running.file, answers_of(host_, std::move(heard_by)), then} {
    heard_.resize(static_cast<std::size_t>(record().numOutputs));
    host_.time.tempo = 120;
    host_.time.timeSigNumerator = host_.time.timeSigDenominator = 4;
    host_.time.sampleRate = usual_rate;
}

subject::subject(trial& running, int rate, int block) : subject(running) { prepare(rate, block); }

subject::~subject() {
    if (is_closed())
        return;
    if (runs_)
        suspend();
}

void subject::set_rate(int rate) {
    rate_ = rate;
    host_.rate_hz = rate;
    host_.time.sampleRate = rate;
    running_.at(rate_, block_);
    ask(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate));
}

void subject::set_block(int nb_frames) {
    block_ = nb_frames;
    host_.block_frames = nb_frames;
    running_.at(rate_, block_);
    ask(effSetBlockSize, 0, nb_frames);
}

void subject::resume() {
    ask(effMainsChanged, 0, 1);
    ask(effStartProcess);
    runs_ = true;
}

void subject::suspend() {
    ask(effStopProcess);
    ask(effMainsChanged, 0, 0);
    runs_ = false;
}

void subject::prepare(int rate, int block) {
    if (runs_)
        suspend();
    set_rate(rate);
    set_block(block);
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
    for (VstInt32 i = 0; i < record().numOutputs; ++i)
        memory_.push_back(std::make_unique<guarded_memory>((length + 4) * sizeof(float)));
    inputs_.assign(static_cast<std::size_t>(record().numInputs), std::vector<float>(length));
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
    running_.at_frame(static_cast<long>(host_.time.samplePos));
    record().processReplacing(&record(), p_inputs_.data(), p_outputs_.data(), nb_frames);
    host_.time.samplePos += nb_frames;
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
    if (has(effFlagsIsSynth))
        strike(middle_note);
    play_long(rate_ / 4);
    expect_finite();
    running_.expect(!must_sound || loudest() > 0, "a note that is struck then is not heard");
    forget();
}

bool is_heard(trial& running) {
    subject played(running, usual_rate, usual_block);
    require_outputs(running, played);
    if (!played.has(effFlagsIsSynth))
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
    if (!played.has(effFlagsCanReplacing) || !played.record().processReplacing)
        running.skip("it does not process single precision");
    if (played.record().numOutputs == 0)
        running.skip("it has no output");
}
