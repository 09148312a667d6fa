#pragma once
/// A plug-in under judgement, from its loading to its unloading, and what it plays. Functions are
/// [setup], those of its sound [audio] on whatever thread plays it.

#include "check/trial.h"
#include "plugin/plugin.h"
#include "probe/guarded_memory.h"

#include <memory>
#include <vector>

/// Samples of each output.
using sound = std::vector<std::vector<float>>;

constexpr int usual_rate = 48000;
constexpr int usual_block = 64;
constexpr int middle_note = 60;

class subject {
public:
    /// Loads and opens it.
    explicit subject(trial& running, library::in_the_end then = library::in_the_end::is_unloaded);

    /// The same, ready to play.
    subject(trial& running, int rate, int block);

    ~subject(); ///< as hosts do: stops it, if need be, and closes it
    subject(const subject&) = delete;
    subject& operator=(const subject&) = delete;

    void prepare(int rate, int block); ///< stopped, set up and resumed
    void resume() { plugin_->start(host_activity::plays); }
    void suspend() { plugin_->stop(); }
    [[nodiscard]] bool is_closed() const { return !plugin_; }
    void close() { plugin_.reset(); }

    [[nodiscard]] plugin& tested() const { return *plugin_; }
    [[nodiscard]] int nb_parameters() const { return plugin_->nb_parameters(); }
    [[nodiscard]] float get(int index) const { return plugin_->parameter(index); }
    void set(int index, float value) const { plugin_->set_parameter(index, value); }

    void send(event_list& events) const { plugin_->send(events); }
    void strike(int note) const;
    void let_go(int note) const;

    /// Room for blocks of so many frames, in memory whose end is guarded; where a block does not
    /// fill 16 bytes, frames behind it are compared.
    void make_room(int nb_frames);

    /// Plays one block, and nothing else: no memory, no judgement. Needs room.
    void run(int nb_frames);

    /// Plays a block and keeps its sound.
    void play(int nb_frames);

    /// Plays so many frames in blocks of the announced length.
    void play_long(long nb_frames);

    [[nodiscard]] const sound& heard() const { return heard_; }
    void forget() { heard_.assign(heard_.size(), {}); }

    // Expectations of what was heard since it was last forgotten.

    void expect_finite();
    void expect_normal();  ///< no subnormal numbers
    void expect_written(); ///< each frame of each output, and none beyond
    [[nodiscard]] double loudest() const;

    /// Strikes a note and expects finite sound, and some of it where `must_sound`.
    void expect_plays(bool must_sound);

protected:
    subject(trial& running, std::unique_ptr<plugin> opened);

    [[nodiscard]] trial& running() const { return running_; }

private:
    [[nodiscard]] float* output(std::size_t channel, int nb_frames) const;
    void expect_each(bool (*holds)(float), const char* what);

    trial& running_;
    std::unique_ptr<plugin> plugin_;
    int rate_ = usual_rate;
    int block_ = usual_block;
    int room_ = 0;
    std::vector<std::unique_ptr<guarded_memory>> memory_{};
    std::vector<std::vector<float>> inputs_{};
    std::vector<float*> p_inputs_{};
    std::vector<float*> p_outputs_{};
    sound heard_{};
    bool wrote_beyond_ = false;
};

/// Whether a note that is struck is heard. Skips the row unless the plug-in is an instrument.
[[nodiscard]] bool is_heard(trial& running);

/// Skips the row unless the plug-in is an instrument that is heard when a note is struck.
void require_sound(trial& running);

/// Skips the row unless sound can be had of it.
void require_outputs(const trial& running, const subject& played);
