/// Endurance, offline: an instance is played at random while another holds a note. Each minute of
/// music has a line. After the first minute the process must hold as much of the system as before,
/// and the note must keep its pitch; else the status is 1, and a sentence says why.

#include "failure/failure.h"
#include "platform/process.h"
#include "platform/resources.h"
#include "plugin/effect.h"
#include "plugin/event_list.h"
#include "probe/signal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <unistd.h>
#include <vector>

namespace {

constexpr int longest_block = 2048;
constexpr int held_rate = 48000;
constexpr short_message held_note{0x90, 57, 100};

/// A table holds a period in a whole number of samples at eight times the rate.
const double tuned_hz = 8.0 * held_rate / std::trunc(8.0 * held_rate / 440);
constexpr double bound_cents = 0.01;

constexpr std::size_t heap_slack = 512; ///< bytes: what is left of freed pieces may be too small

void expect(bool holds, const std::string& sentence) {
    if (!holds)
        throw failure{exit_failed, sentence};
}

std::mt19937 chance;

int below(int bound) { return static_cast<int>(chance() % static_cast<unsigned>(bound)); }

bool one_in(int bound) { return below(bound) == 0; }

void set_rate(const effect& played, int rate) {
    played.ask(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate));
}

/// Plays a block into `right`; the other output is not listened to.
void process(const effect& played, std::span<float> right) {
    static std::array<float, longest_block> left;
    std::array outputs{right.data(), left.data()};
    played.record()->processReplacing(played.record(), nullptr, outputs.data(),
                                      static_cast<VstInt32>(right.size()));
}

/// Mostly keys and the parameters' controllers, now and then any message or silence.
short_message any_message() {
    const auto byte = [](int value) { return static_cast<std::uint8_t>(value); };
    if (one_in(1000))
        return {byte(0xB0 | below(16)), byte(one_in(2) ? 120 : 123), 0};
    if (one_in(10))
        return {byte(0x80 | below(128)), byte(below(128)), byte(below(128))};
    if (one_in(8))
        return {0xB0, byte(one_in(10) ? 7 : 80 + below(9)), byte(below(128))};
    return {byte(one_in(2) ? 0x80 : 0x90), byte(20 + below(56)), byte(below(128))};
}

using action = void (*)(const effect&);
constexpr float odd_values[]{-1, 2, NAN, INFINITY, 1e-40f};
constexpr action rare_actions[]{
    [](const effect& played) { played.ask(effSetProgram, 0, below(4) - 1); },
    [](const effect& played) { played.ask(effMainsChanged, 0, below(2)); },
    [](const effect& played) { played.ask(effSetBlockSize, 0, below(longest_block)); },
    [](const effect& played) { played.set(below(12) - 1, odd_values[below(5)]); }};

void play_at_random(const effect& played, std::span<float> block) {
    static constexpr std::array<std::uint8_t, 300> dump{0xF0, 0x7D};
    event_list events;
    for (int i = one_in(4) ? below(8) : 0; i > 0; --i)
        events.add_midi(any_message(), below(longest_block));
    if (one_in(100))
        events.add_sysex(std::span(dump).first(static_cast<std::size_t>(1 + below(300))), 0);
    played.ask(effProcessEvents, 0, 0, events.records());
    if (one_in(8))
        played.set(below(10), static_cast<float>(below(101)) / 100);
    if (one_in(16))
        rare_actions[below(4)](played);
    process(played, block);
    expect(is_finite(block), "what is played at random is no longer finite");
}

/// Fills `sound`, a minute of the held note, while the other is played through all rates.
void play_minute(const effect& played, const effect& held, std::span<float> sound) {
    static std::array rates{8000, 22050, 31415, 32000, 44100, 48000, 88200, 96000, 176400, 192000};
    std::array<float, longest_block> block;
    std::ranges::shuffle(rates, chance);
    std::size_t nb_held = 0;
    for (std::size_t i = 0; i < rates.size(); ++i) {
        set_rate(played, rates[i]);
        for (const std::size_t end = (i + 1) * sound.size() / rates.size(); nb_held < end;) {
            const auto nb_frames = static_cast<std::size_t>(1 + below(longest_block));
            const auto length = std::min(end - nb_held, nb_frames);
            play_at_random(played, std::span(block).first(nb_frames));
            process(held, sound.subspan(nb_held, length));
            nb_held += length;
        }
    }
    set_rate(played, held_rate); // at another it holds more or less
}

/// How far the note is from its tuning. The engine's frame counter has 32 bits: where it comes
/// round, the tone steps, and the longer part on either side is heard.
double error_cents(std::span<const float> sound, long minute) {
    const std::uint64_t end = static_cast<std::uint64_t>(minute) * sound.size();
    if (const std::size_t nb_since = end & 0xFFFFFFFF; nb_since < sound.size() && end != nb_since) {
        std::puts("the frame counter comes round");
        const std::size_t step = sound.size() - nb_since;
        sound = 2 * step > sound.size() ? sound.first(step) : sound.subspan(step);
    }
    const double hz = frequency(sound.first(held_rate), held_rate, tuned_hz);
    return cents(frequency(sound, held_rate, hz), tuned_hz);
}

void soak(const std::filesystem::path& file, long nb_minutes) {
    const effect played(file, answer_version), held(file, answer_version);
    set_rate(held, held_rate);
    for (const VstInt32 stop : {0, 1, 2}) // the last one alone has little but the lowest partial
        held.set(stop, 0.0f);
    event_list strike;
    strike.add_midi(held_note, 0);
    held.ask(effProcessEvents, 0, 0, strike.records());
    std::vector<float> sound(60L * held_rate);
    resources first;
    double worst = 0;
    for (long minute = 1; minute <= nb_minutes; ++minute) {
        play_minute(played, held, sound);
        const double cents = error_cents(sound, minute);
        const resources now = resources_in_use();
        std::printf("minute %ld: %zu bytes, %ld descriptors, %ld threads, the note %+.6f cents\n",
                    minute, now.nb_bytes, now.nb_handles, now.nb_threads, cents);
        std::fflush(stdout);
        worst = std::max(worst, std::fabs(cents));
        expect(worst <= bound_cents, "the held note is out of tune");
        if (minute == 1)
            first = now;
        expect(now.nb_handles == first.nb_handles,
               "it holds other descriptors than after the first minute");
        expect(now.nb_threads == first.nb_threads,
               "it has other threads than after the first minute");
        expect(now.nb_bytes <= first.nb_bytes + heap_slack,
               "it holds more memory than after the first minute");
    }
    std::printf("%ld minutes: memory, descriptors and threads stay; the note within %.6f cents\n",
                nb_minutes, worst);
}

} // namespace

int main(int argc, char** argv) {
    // What the allocator keeps for the thread counts as in use.
    if (!std::getenv("GLIBC_TUNABLES")) {
        set_environment("GLIBC_TUNABLES", "glibc.malloc.tcache_count=0");
        execv("/proc/self/exe", argv);
    }
    const long nb_minutes = argc > 1 ? std::atol(argv[1]) : 60;
    const char* const seed = argc > 2 ? argv[2] : "1";
    if (nb_minutes < 1) {
        std::fputs("soak [MINUTES [SEED]]\n", stderr);
        return exit_misused;
    }
    chance.seed(static_cast<unsigned>(std::atol(seed)));
    set_environment("TINDELWAX_SEED", seed);
    try {
        soak(executable_path().parent_path() / "tindelwax.so", nb_minutes);
    } catch (const std::exception& end) {
        std::fprintf(stderr, "soak: %s\n", end.what());
        return exit_failed;
    }
}
