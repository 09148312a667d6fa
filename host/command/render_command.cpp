#include "command/render_command.h"

#include "audio_file/audio_file.h"
#include "command/arguments.h"
#include "command/interrupt.h"
#include "command/progress_bar.h"
#include "command/song_input.h"
#include "command/sound_writer.h"
#include "platform/streams.h"
#include "render/render.h"
#include "report/keyboard.h"
#include "report/report.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace fs = std::filesystem;

namespace {

// A damaged delta time can stretch a song to years.
constexpr double max_unasked_seconds = 30 * 60;

[[noreturn]] void misuse(const std::string& sentence) { throw failure{exit_misused, sentence}; }

/// Where the audio goes: "-" or a file's name.
std::string choose_output(const render_request& request, std::FILE* p_output) {
    std::string output = request.output;
    if (output.empty())
        output = request.song == "-"
                     ? "-"
                     : fs::path{request.song}.filename().replace_extension(".wav").string();
    if (output == "-" && is_terminal(p_output))
        misuse("standard output is a terminal; name the audio file with -o FILE");
    std::error_code error;
    if (output != "-" && fs::equivalent(request.song, output, error))
        misuse("the audio would replace the song " + request.song + "; name its file with -o FILE");
    return output;
}

audio_format choose_format(const render_request& request, const std::string& output) {
    std::string extension = output == "-" ? ".wav" : fs::path{output}.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return static_cast<char>(std::tolower(c)); });
    if (extension != ".wav" && extension != ".flac")
        misuse("the name of the audio file " + output + " must end in .wav or .flac");
    const bool is_flac = extension == ".flac";
    const int finest = is_flac ? 24 : 32;
    return {.is_flac = is_flac,
            .nb_bits = request.nb_bits ? request.nb_bits : finest,
            .rate_hz = request.rate_hz};
}

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
                                           return !interrupt_requested();
                                       }};
    const render_options options{request.rate_hz, request.block_frames, request.tail_seconds};
    if (!render_score(instrument, music, song.tempi, options, listener))
        throw failure{exit_failed, "interrupted; nothing was written"};
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
    const std::string output_name = choose_output(request, p_output);
    audio_format format = choose_format(request, output_name);
    score_options arrangement{.transposition = request.transposition,
                              .max_seconds = request.length_seconds};
    if (!request.channels.empty())
        arrangement.channels = parse_channels(request.channels);
    const midi_song song = song_read(request.song);
    check_length(request, song, format);
    const score music = score_arrange(song, arrangement, request.rate_hz);

    set_environment("TINDELWAX_SEED", std::to_string(request.seed).c_str());
    plugin_try(request.plugin_file);
    plugin instrument{request.plugin_file};
    instrument.prepare(request.rate_hz, request.block_frames);
    apply_settings(instrument, request.settings);
    format.nb_channels = std::max(1, instrument.nb_channels());

    interrupt_catch();
    const bool goes_out = output_name == "-";
    auto output = goes_out ? output_file{p_output} : output_file{fs::path{output_name}};
    audio_file file{output, format};
    sound_writer writer = make_writer(file, request);
    const timing times = render_sound(instrument, music, song, request, writer);
    print(goes_out ? stderr : p_output,
          report_text({.output_name = goes_out ? "standard output" : output_name,
                       .seconds = times.seconds,
                       .elapsed_seconds = times.elapsed_seconds,
                       .transposition = request.transposition,
                       .has_known_keyboard = instrument.record().uniqueID == tindelwax_id,
                       .clips = format.nb_bits < 32,
                       .music = music,
                       .levels = writer.levels()}));
}
