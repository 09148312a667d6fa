#include "command/arguments.h"
#include "command/check_command.h"
#include "command/info_command.h"
#include "command/panel_command.h"
#include "command/play_command.h"
#include "command/render_command.h"
#include "failure/print.h"
#include "failure/printable.h"
#include "platform/interrupt.h"
#include "platform/process.h"
#include "platform/streams.h"

#include <limits>
#include <memory>
#include <sstream>
#include <utility>

namespace {

void add_plugin_option(CLI::App& app, std::filesystem::path& file) {
    app.add_option("--plugin", file,
                   "the instrument (tindelwax.so beside this program, or\n"
                   "installed with it)")
        ->option_text("FILE");
}

void add_file_options(CLI::App& app, render_request& request) {
    app.add_option("song", request.song, "the MIDI file; - reads standard input")
        ->option_text("SONG.mid")
        ->required();
    app.add_option("-o,--output", request.output,
                   "the audio file, named .wav or .flac; - writes a WAV\n"
                   "file to standard output (the song's name with .wav, in\n"
                   "the current folder, if that is free; standard output\n"
                   "for song -)")
        ->option_text("OUT");
    app.add_option_function<std::string>(
           "--bits", [&request](const std::string& text) { request.nb_bits = parse_bits(text); },
           "16 or 24 whole-number bits, or in WAV 32-bit float\n"
           "(the finest: WAV 32, FLAC 24)")
        ->option_text("N");
    add_number(app, "--rate", request.rate_hz, 8000, 192000, "frames a second (48000)")
        ->option_text("HZ");
    add_number(app, "--block", request.block_frames, 1, 65536,
               "frames that are asked for at once (64)")
        ->option_text("FRAMES");
}

void add_instrument_options(CLI::App& app, instrument_request& request) {
    add_plugin_option(app, request.plugin_file);
    app.add_option("--registration", request.registration,
                   "draw the stops that a registration names;\n"
                   "tindelwax registrations lists them")
        ->option_text("NAME|FILE");
    app.add_option("--set", request.settings,
                   "set a parameter to a value from 0 to 1, or on or off;\n"
                   "may be repeated; tindelwax info lists the names")
        ->option_text("Name=value")
        ->allow_extra_args(false)
        ->take_all();
    add_number(app, "--seed", request.seed, std::uint32_t{0},
               std::numeric_limits<std::uint32_t>::max(),
               "start of the instrument's random numbers (1): the same\n"
               "command gives the same bytes on every run")
        ->option_text("N");
}

template <typename Request>
void add_arrangement_options(CLI::App& app, Request& request) {
    add_number(app, "--transpose", request.transposition, -127, 127,
               "move all notes by N semitones (0)")
        ->option_text("N");
    app.add_option("--channels", request.channels,
                   "play these MIDI channels, such as 1,3-5, or all\n"
                   "(all but 10, the drums)")
        ->option_text("LIST");
}

void add_length_options(CLI::App& app, render_request& request) {
    add_number(app, "--length", request.length_seconds, 0.001, 36000.0,
               "play only the song's first seconds (all)")
        ->option_text("SECONDS");
    add_number(app, "--tail", request.tail_seconds, 0.0, 5.0,
               "let the song fade for at most so long, up to 5 (5);\n"
               "100 ms below -90 dBFS end it sooner")
        ->option_text("SECONDS");
}

void add_console_options(CLI::App& app, instrument_request& request) {
    app.add_option("--map", request.mappings,
                   "let a controller move a parameter, backwards with\n"
                   "-CC; may be repeated")
        ->option_text("CC[:channel]=Name")
        ->allow_extra_args(false)
        ->take_all();
    app.add_flag("--sustain", request.sustains, "controller 64 holds notes, as a piano's pedal");
    app.add_flag("--expression", request.expresses, "controller 11 scales Volume");
}

void add_level_options(CLI::App& app, render_request& request) {
    CLI::Option* gain =
        add_number(app, "--gain", request.gain_db, -200.0, 200.0, "amplify by DB decibels (0)")
            ->option_text("DB");
    add_number(app, "--normalize", request.peak_db, -200.0, 200.0,
               "amplify to a peak of DB dBFS (-1 if none is given)")
        ->option_text("[DB]")
        ->excludes(gain);
}

CLI::App* add_render(CLI::App& app, render_request& request) {
    CLI::App* render = app.add_subcommand("render", "Render a MIDI song to an audio file");
    render->footer("Defaults stand in parentheses. Exit status: 0 success, 1 failure, 2 wrong\n"
                   "usage, a song that cannot be read or a file that is no plug-in.");
    add_file_options(*render, request);
    add_arrangement_options(*render, request);
    add_length_options(*render, request);
    add_console_options(*render, request);
    add_level_options(*render, request);
    add_instrument_options(*render, request);
    return render;
}

void add_sound_options(CLI::App& app, play_request& request) {
    app.add_option_function<std::string>(
           "--via", [&request](const std::string& text) { request.sound.via = parse_via(text); },
           "jack or alsa (a JACK server that runs, or else ALSA)")
        ->option_text("WAY");
    app.add_option("--device", request.sound.device, "a part of the output's name (the usual one)")
        ->option_text("NAME");
    app.add_option("--midi", request.sound.midi, "a part of the inputs' names (every one)")
        ->option_text("NAME");
    add_number(app, "--rate", request.sound.rate_hz, 8000, 192000,
               "frames a second, without a JACK server (48000)")
        ->option_text("HZ");
    add_number(app, "--block", request.sound.block_frames, 16, 8192,
               "frames at once, without a JACK server (128)")
        ->option_text("FRAMES");
    app.add_flag_callback(
        "--connect", [&request] { request.sound.connects = true; },
        "connect JACK's ports to outputs and keyboards (so it is)");
    app.add_flag_callback(
        "--no-connect", [&request] { request.sound.connects = false; },
        "leave that to a patch bay");
    app.add_flag("--list", request.lists, "list devices and ports, and end");
}

CLI::App* add_play(CLI::App& app, play_request& request) {
    CLI::App* play = app.add_subcommand("play", "Play the instrument live");
    play->footer("From Z to M and from Q to P the keys of the window, or of the terminal without\n"
                 "one, play; comma and full stop shift them, Escape silences. Ctrl-C ends.");
    play->add_option("song", request.song, "a MIDI file that plays along")->option_text("SONG.mid");
    play->add_flag("--loop", request.loops, "repeat the song");
    add_arrangement_options(*play, request);
    add_sound_options(*play, request);
    play->add_flag_callback(
        "--panel", [&request] { request.shows_panel = true; },
        "show the panel (where a display is)");
    play->add_flag_callback(
        "--no-panel", [&request] { request.shows_panel = false; }, "do without");
    add_number(*play, "--scale", request.scale, 1, 8,
               "1 to 8 times as large a panel as plain, or as near to\n"
               "that as it can be (its own size)")
        ->option_text("N");
    add_console_options(*play, request);
    play->add_flag("--learn", request.learns, "the next controller moves what was touched last");
    play->add_flag("--forget", request.forgets, "forget what was learned");
    add_instrument_options(*play, request);
    play->add_option("--save", request.saved_file, "at the end, write a registration")
        ->option_text("FILE.txt");
    play->add_flag("--quiet", request.is_quiet, "show nothing of the sound");
    return play;
}

CLI::App* add_panel(CLI::App& app, panel_request& request) {
    CLI::App* panel = app.add_subcommand("panel", "Picture a plug-in's editor");
    panel->footer("Where there is no display, the editor opens on one that nobody sees (Xvfb).");
    panel->add_option("-o,--output", request.output, "the picture, named .png")
        ->option_text("PANEL.png")
        ->required();
    add_number(*panel, "--scale", request.scale, 1, 8,
               "1 to 8 times as large as plain (its own size): drawn so,\n"
               "or each pixel a square")
        ->option_text("N");
    add_instrument_options(*panel, request);
    return panel;
}

CLI::App* add_check(CLI::App& app, check_request& request) {
    CLI::App* check = app.add_subcommand("check", "Judge any plug-in: VST 2.4, CLAP or LV2");
    add_check_options(*check, request);
    return check;
}

std::string complaint_text(const CLI::App& app, const CLI::ParseError& error) {
    std::string words = error.what();
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) // none or two
        return words.substr(0, words.find(':')) + " takes one value";
    if (!app.get_subcommands().empty())
        return words;
    const auto rest = app.remaining();
    std::string text = rest.empty() ? "a command is missing" : '"' + rest[0] + "\" is no command";
    const char* separator = "; the commands are ";
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        text += std::exchange(separator, ", ") + command->get_name();
    return text;
}

/// Beside the program where both are built; else in the VST folder where both are installed.
std::filesystem::path own_plugin_file() {
    const std::filesystem::path folder = executable_path().parent_path();
    const auto beside = folder / "tindelwax.so";
    const auto installed = folder.parent_path() / "lib/vst/tindelwax.so";
    std::error_code ignored;
    return !exists(beside, ignored) && exists(installed, ignored) ? installed : beside;
}

/// Returns the exit status.
int run(std::vector<std::string> arguments, std::FILE* p_output) {
    CLI::App app{"Plays Tindelwax or any other VST 2.4, CLAP or LV2 instrument, live or songs\n"
                 "into files, and pictures its editor.\n"
                 "tindelwax COMMAND --help tells all about a command.",
                 "tindelwax"};
    app.set_version_flag("--version", "tindelwax " TINDELWAX_VERSION);
    app.require_subcommand(1);
    app.get_formatter()->column_width(24);
    const std::filesystem::path ours = own_plugin_file();
    render_request to_render{{.plugin_file = ours}};
    const CLI::App* render = add_render(app, to_render);
    play_request to_play{{.plugin_file = ours}};
    const CLI::App* play = add_play(app, to_play);
    panel_request to_picture{{.plugin_file = ours}};
    const CLI::App* panel = add_panel(app, to_picture);
    instrument_request to_describe{.plugin_file = ours};
    CLI::App* info = app.add_subcommand("info", "Tell what a plug-in says of itself");
    add_plugin_option(*info, to_describe.plugin_file);
    const CLI::App* registrations =
        app.add_subcommand("registrations", "List the registrations that --registration knows");
    const CLI::App* map =
        app.add_subcommand("map", "Print what play --learn has learned, as options");
    check_request to_check;
    const CLI::App* check = add_check(app, to_check);

    join_optional_level(arguments);
    std::reverse(arguments.begin(), arguments.end()); // the library takes them from the back
    try {
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& end) {
        std::ostringstream asked_for;
        std::ostringstream complaint;
        if (app.exit(end, asked_for, complaint) != 0)
            throw failure{exit_misused, complaint_text(app, end) + " (--help tells more)"};
        print(p_output, asked_for.str());
        return exit_success;
    }
    if (check->parsed())
        return check_run(to_check, p_output);
    if (render->parsed())
        render_run(to_render, p_output);
    else if (play->parsed())
        play_run(to_play, p_output);
    else if (panel->parsed())
        panel_run(to_picture);
    else if (map->parsed())
        print(p_output, learned_text());
    else if (registrations->parsed())
        print(p_output, registrations_text());
    else
        print(p_output, info_text(to_describe.plugin_file));
    return exit_success;
}

} // namespace

int main(int argc, char** argv) {
    std::FILE* p_output = claim_standard_output();
    ignore_closed_pipes();
    interrupt_catch();
    try {
        return run({argv + 1, argv + argc}, p_output);
    } catch (const failure& end) {
        std::fprintf(stderr, "tindelwax: %s\n", end.what());
        return end.status;
    } catch (const std::exception& end) {
        std::fprintf(stderr, "tindelwax: it failed unexpectedly: %s\n",
                     printable(end.what()).c_str());
        return exit_failed;
    }
}
