#include "command/render_command.h"

#include "audio_file/audio_file.h"
#include "command/arguments.h"
#include "command/output_choice.h"
#include "command/progress_bar.h"
#include "command/song_input.h"
#include "command/sound_writer.h"
#include "render/render.h"
#include "report/report.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace {

// A damaged delta time can stretch a song to years.
constexpr double max_unasked_seconds = 30 * 60;

// What most crashes come before, and nobody waits for.
constexpr double rehearsed_seconds = 0.1;

[[noreturn]] void misuse(const std::string& sentence) { throw failure{exit_misused, sentence}; }

void check_length(const render_request& request, const midi_song& song,
                  const audio_format& format) {
    if (request.length_seconds == 0 && song.seconds > max_unasked_seconds)
        misuse(song_name(request.song) + " lasts " + std::to_string(std::llround(song.seconds / 60))
               + " minutes, and more than 30 are rendered only if --length SECONDS asks for them");
    const double seconds =
        request.length_seconds == 0 ? song.seconds : std::min(song.seconds, request.length_seconds);
    if ((seconds + request.tail_seconds) * request.rate_hz
        > static_cast<double>(audio_format_max_frames(format)))
        misuse("so much audio does not fit into a WAV file; take FLAC, a lower --rate or fewer "
               "--bits");
}

struct timing {
    double seconds;
    double elapsed_seconds;
};

render_options options_of(const render_request& request) {
    return {request.rate_hz, request.block_frames, request.tail_seconds};
}

/// Plays the song's beginning, unheard.
void rehearse(plugin& instrument, const score& music, const midi_song& song,
              const render_request& request) {
    const auto goes_on = [&request, seconds = 0.0](double) mutable {
        const double before = seconds; // so that one block is played, however long
        seconds += static_cast<double>(request.block_frames) / request.rate_hz;
        return before < rehearsed_seconds;
    };
    console desk{instrument, instrument_console(request, instrument)};
    render_score(instrument, desk, music, song.tempi, options_of(request),
                 {.hear = [](std::span<const float>) {}, .goes_on = goes_on});
}

timing render_sound(plugin& instrument, const score& music, const midi_song& song,
                    const render_request& request, sound_writer& writer) {
    const auto start = std::chrono::steady_clock::now();
    std::uint64_t nb_samples = 0;
    progress_bar bar;
    const render_listener listener{.hear =
                                       [&](std::span<const float> samples) {
                                           nb_samples += samples.size();
                                           writer.take(samples);
                                       },
                                   .goes_on =
                                       [&bar](double done) {
                                           bar.show(done);
                                           return true;
                                       }};
    console desk{instrument, instrument_console(request, instrument)};
    render_score(instrument, desk, music, song.tempi, options_of(request), listener);
    writer.finish();
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    return {static_cast<double>(nb_samples) / instrument.nb_channels() / request.rate_hz,
            elapsed.count()};
}

sound_writer make_writer(audio_file& file, const render_request& request) {
    const auto gain = static_cast<float>(gain_from_decibels(request.gain_db));
    if (!request.peak_db)
        return {file, gain, std::nullopt};
    return {file, 1, static_cast<float>(gain_from_decibels(*request.peak_db))};
}

void print(std::FILE* stream, const std::string& text) {
    if (stream)
        std::fputs(text.c_str(), stream);
}

} // namespace

void render_run(const render_request& request, std::FILE* p_output) {
    const std::string output_name = output_choose(request, p_output);
    score_options arrangement{.transposition = request.transposition,
                              .max_seconds = request.length_seconds};
    if (!request.channels.empty())
        arrangement.channels = parse_channels(request.channels);
    const midi_song song = song_read(request.song);
    audio_format format =
        output_choose_format(request, output_name); // the song may have given the name
    check_length(request, song, format);
    const score music = score_arrange(song, arrangement, request.rate_hz);

    instrument_try(request,
                   [&](plugin& instrument) { rehearse(instrument, music, song, request); });
    const auto p_loaded = plugin_load(request.plugin_file);
    plugin& instrument = *p_loaded;
    instrument_set_up(instrument, request);
    format.nb_channels = std::max(1, instrument.nb_channels());

    const bool goes_out = output_name == "-";
    const auto one_there =
        request.output.empty() ? output_file::if_there::refuses : output_file::if_there::replaces;
    auto output = goes_out ? output_file{p_output}
                           : output_file{std::filesystem::path{output_name}, one_there};
    audio_file file{output, format};
    sound_writer writer = make_writer(file, request);
    const std::string name = goes_out ? "standard output" : output_name;
    const bool clips = format.nb_bits < 32;
    const timing times = render_sound(instrument, music, song, request, writer);
    print(
        goes_out ? stderr : p_output,
        report_text({.output_name = name,
                     .seconds = times.seconds,
                     .elapsed_seconds = times.elapsed_seconds,
                     .transposition = request.transposition,
                     .chooses_channels = !request.channels.empty(),
                     .keys = instrument.id() == tindelwax_id ? tindelwax_keyboard : widest_keyboard,
                     .nb_outputs = instrument.nb_outputs(),
                     .clips = clips,
                     .music = music,
                     .levels = writer.levels()}));
    if (clips && writer.levels().nb_over > 0)
        warn(name + " is clipped; lower it with --normalize -1 or a smaller --gain");
}
