/// Parameters that are set while sound is made.

#include "check/rows.h"
#include "check/vst_subject.h"

#include <atomic>
#include <cmath>
#include <limits>
#include <random>
#include <thread>

namespace {

void require_parameters(const trial& running, const subject& played) {
    require_outputs(running, played);
    if (played.nb_parameters() == 0)
        running.skip("it has no parameters");
}

/// Sets each parameter to these values in turn while a note sounds.
void set_while_playing(trial& running, const std::vector<float>& values) {
    subject played(running, usual_rate, usual_block);
    require_parameters(running, played);
    played.strike(middle_note);
    for (int index = 0; index < played.nb_parameters(); ++index) {
        const float before = played.get(index);
        for (const float value : values) {
            running.doing("parameter " + std::to_string(index) + " at " + std::to_string(value));
            played.forget();
            played.set(index, value);
            played.play_long(4L * usual_block);
            played.expect_finite();
            running.expect(std::isfinite(played.get(index)), "its value is not finite");
        }
        played.set(index, before);
    }
    running.doing("");
}

void within_limits(trial& running) {
    const subject asked(running);
    require_parameters(running, asked);
    for (int index = 0; index < asked.nb_parameters(); ++index) {
        for (const float value : {-1.0f, 0.0f, 1.0f}) { // the first stands for its default
            if (value >= 0)
                asked.set(index, value);
            const float got = asked.get(index);
            running.expect(got >= 0 && got <= 1,
                           "parameter " + std::to_string(index) + " is " + std::to_string(got));
        }
        running.prefer(asked.get(index) == 1,
                       "parameter " + std::to_string(index) + " does not keep 1");
    }
}

void ends(trial& running) { set_while_playing(running, {0, 1, 0.5f}); }

void no_numbers(trial& running) {
    using limits = std::numeric_limits<float>;
    set_while_playing(running, {-1, 2, 1e30f, limits::quiet_NaN(), limits::infinity(),
                                -limits::infinity(), limits::denorm_min()});
}

void beyond_the_last(trial& running) {
    const vst_subject asked(running, usual_rate, usual_block);
    const guarded_memory text(4096);
    for (const int index :
         {-1, asked.nb_parameters(), 100000, std::numeric_limits<VstInt32>::max()}) {
        running.doing("parameter " + std::to_string(index));
        asked.set(index, 0.5f);
        (void)asked.get(index);
        for (const VstInt32 opcode : {effGetParamName, effGetParamLabel, effGetParamDisplay})
            asked.ask(opcode, index, 0, text.data());
    }
    running.doing("");
}

void at_random(trial& running) {
    subject played(running, usual_rate, usual_block);
    require_parameters(running, played);
    std::mt19937 random(running.seed);
    for (int i = 0; i < 1000; ++i) {
        const auto index =
            static_cast<int>(random() % static_cast<unsigned>(played.nb_parameters()));
        played.set(index, static_cast<float>(random() % 1001) / 1000);
        if (i % 20 == 0)
            played.strike(36 + static_cast<int>(random() % 48));
        played.play_long(usual_block);
    }
    played.expect_finite();
}

/// As the editor's thread does, or a host's automation.
void from_another_thread(trial& running) {
    subject played(running, usual_rate, usual_block);
    require_parameters(running, played);
    std::atomic<bool> is_over = false;
    std::thread setter([&] {
        std::mt19937 random(running.seed);
        while (!is_over) {
            const auto index =
                static_cast<int>(random() % static_cast<unsigned>(played.nb_parameters()));
            played.set(index, static_cast<float>(random() % 1001) / 1000);
            (void)played.get(index);
            (void)played.tested().parameter_text(index);
        }
    });
    for (int i = 0; i < 500; ++i) {
        if (i % 20 == 0)
            played.strike(36 + i / 20);
        played.play_long(usual_block);
    }
    is_over = true;
    setter.join();
    played.expect_finite();
}

} // namespace

table parameter_rows() {
    return table{{"parameters/within limits", demand::interface, within_limits},
                 {"parameters/ends", demand::interface, ends},
                 {"parameters/at random", demand::interface, at_random},
                 {"parameters/from another thread", demand::interface, from_another_thread}}
           + only(plugin_format::vst,
                  {{"parameters/values that are no numbers", demand::hosts, no_numbers},
                   {"parameters/beyond the last", demand::hosts, beyond_the_last}});
}
