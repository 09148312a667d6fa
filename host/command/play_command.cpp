#include "command/play_command.h"

#include "command/arguments.h"
#include "command/song_input.h"
#include "failure/print.h"
#include "failure/printable.h"
#include "live/play_panel.h"
#include "live/sound_source.h"
#include "live/status_line.h"
#include "output_file/output_file.h"
#include "platform/interrupt.h"
#include "platform/process.h"
#include "platform/streams.h"
#include "platform/terminal_keys.h"
#include "platform/user_folders.h"
#include "render/render.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace {

using namespace std::chrono_literals;
using steady = std::chrono::steady_clock;

constexpr auto turn = 15ms; // as often as panels want it, and within the eye's patience
constexpr auto between_lines = 100ms;
constexpr auto between_looks = 500ms;
constexpr auto end_patience = 300ms;
constexpr auto fade_patience = 5s;

std::filesystem::path learned_file() { return user_state_folder() / "controllers"; }

/// Keeps what is learned, from one time to the next. Returns what there is to say.
std::string keep_learned(const control_mapping& mapping) {
    auto kept = control_map_read(learned_file());
    std::erase_if(kept, [&mapping](const control_mapping& other) {
        return mapping.controller == other.controller && mapping.channel == other.channel;
    });
    kept.push_back(mapping);
    if (!control_map_write(learned_file(), kept))
        return "cannot write " + learned_file().string() + ": " + std::strerror(errno);
    return "learned " + control_mapping_text(mapping);
}

/// By program number. One that cannot be drawn whole keeps its place.
std::vector<registration> programs(const std::vector<std::string>& parameters) {
    std::vector<registration> all = registrations_list();
    for (registration& one : all)
        try {
            (void)registration_resolve(one, parameters);
        } catch (const failure& wrong) {
            if (registration_concerns(one, parameters)) // and is not another instrument's
                warn(wrong.what());
            one.lines.clear();
        }
    return all;
}

console_options players_options(const play_request& request, plugin& instrument) {
    console_options options = instrument_console(request, instrument);
    options.learns = request.learns;
    const std::vector<std::string> names = parameter_names(instrument);
    // What was learned for another instrument waits for that. Options come later and so prevail.
    auto learned = control_map_read(learned_file());
    std::erase_if(learned, [&names](const control_mapping& mapping) {
        return std::ranges::find(names, mapping.parameter) == names.end();
    });
    options.mappings.insert(options.mappings.begin(), learned.begin(), learned.end());
    options.programs = programs(names);
    return options;
}

live_song make_song(const play_request& request) {
    live_song made{.loops = request.loops};
    made.arrangement.transposition = request.transposition;
    if (!request.channels.empty())
        made.arrangement.channels = parse_channels(request.channels);
    if (!request.song.empty())
        made.song = song_read(request.song);
    return made;
}

bool wants_panel(const play_request& request, plugin& instrument) {
    const char* p_display = std::getenv("DISPLAY");
    return request.shows_panel.value_or(p_display && *p_display && instrument.has_editor());
}

class performance {
public:
    performance(const play_request& request, plugin& instrument, live_song song,
                std::FILE* p_output)
        : status_{request.is_quiet ? nullptr : p_output},
          options_{players_options(request, instrument)},
          players_{instrument, options_},
          songs_{instrument,
                 {.sustains = request.sustains,
                  .p_swell = options_.p_swell,
                  .mappings = options_.mappings}},
          live_{instrument, players_, songs_, std::move(song)},
          source_{live_, request.sound} {
        instrument.set_listener([this](const panel_edit& edit) {
            if (edit.what == panel_edit::step::sets)
                players_.touch(edit.parameter, edit.value);
        });
        if (wants_panel(request, instrument))
            open_panel(instrument, request);
        if (!panel_ && is_terminal(p_output))
            terminal_.emplace(fileno(p_output));
    }

    void play() {
        const std::atomic<bool>& is_interrupted = interrupt_defer();
        open();
        if (!system_)
            throw failure{exit_failed, source_.absence()};
        if (!keep_memory())
            status_.tell("no memory is kept from the disk; set memlock to unlimited, as rtprio, in "
                         "/etc/security/limits.d/audio.conf");
        while (!is_interrupted && !is_over()) {
            tend();
            if (panel_ && !panel_->idle())
                break;
            if (terminal_)
                take_terminal_keys();
            std::this_thread::sleep_for(turn);
        }
        end();
    }

private:
    /// Nobody asked for it by name: then a display that is none is no reason to be silent.
    void open_panel(plugin& instrument, const play_request& request) {
        try {
            panel_.emplace(instrument, live_, request.scale);
        } catch (const failure& reason) {
            if (request.shows_panel)
                throw;
            status_.tell(reason.what());
        }
    }

    void open() {
        system_ = source_.open();
        last_look_ = steady::now();
        if (!system_)
            return;
        const sound_status now = system_->status();
        status_.tell(std::string{"plays through "} + now.system + " as " + now.name + ", "
                     + std::to_string(now.rate_hz) + " Hz, " + std::to_string(now.block_frames)
                     + " frames");
        if (!now.remark.empty())
            status_.tell(now.remark);
    }

    void tend() {
        if (system_ && !system_->tend()) {
            tell_news();
            system_.reset();
            status_.tell("the sound is gone; looking for it");
        }
        if (!system_ && steady::now() - last_look_ > between_looks)
            open();
        tell_news();
        if (const auto learned = players_.take_learned())
            status_.tell(keep_learned(*learned));
        if (!system_)
            return status_.show_absence();
        if (steady::now() - last_shown_ < between_lines)
            return;
        last_shown_ = steady::now();
        const live_levels levels = live_.take_levels();
        if (std::ranges::max(levels.peaks) > static_cast<float>(silence_gain))
            last_sound_ = last_shown_;
        if (levels.nb_held > 0)
            last_stroke_ = last_shown_;
        status_.show(system_->status(), levels);
    }

    void tell_news() {
        if (system_)
            for (const std::string& news : system_->take_news())
                status_.tell(news);
    }

    void take_terminal_keys() {
        for (const terminal_key& key : terminal_->take()) {
            const key_code code = key_code_of(key.character);
            switch (key.happened) {
            case terminal_key::what::pressed:
                keys_.press(code);
                break;
            case terminal_key::what::released:
                keys_.release(code);
                break;
            case terminal_key::what::struck:
                keys_.toggle(code);
                break;
            }
        }
    }

    /// A song ends with its sound, and with what somebody plays to it.
    bool is_over() {
        if (!live_.song_has_ended())
            return false;
        const auto now = steady::now();
        if (!song_end_)
            song_end_ = now;
        const auto last_stroke = std::max(*song_end_, last_stroke_);
        const bool is_silent = now - std::max(last_stroke, last_sound_) > end_patience;
        return is_silent || now - last_stroke > fade_patience;
    }

    /// Lets the instrument fall silent before the sound goes.
    void end() {
        live_.finish();
        const auto deadline = steady::now() + end_patience;
        while (system_ && !live_.is_quiet() && steady::now() < deadline)
            std::this_thread::sleep_for(1ms);
        if (system_)
            std::this_thread::sleep_for(std::chrono::duration<double>(
                2.0 * system_->status().block_frames / system_->status().rate_hz));
        system_.reset();
        if (options_.p_swell)
            options_.p_swell->set_pedal(1); // what is saved is the volume
    }

    status_line status_;
    console_options options_;
    console players_;
    console songs_;
    live_instrument live_;
    sound_source source_;
    std::optional<play_panel> panel_{};
    std::optional<terminal_keys> terminal_{};
    computer_keys keys_{live_}; // of the terminal
    std::unique_ptr<sound_system> system_{};
    steady::time_point last_look_{};
    steady::time_point last_shown_{};
    steady::time_point last_sound_{};
    steady::time_point last_stroke_{}; // a key was down
    std::optional<steady::time_point> song_end_{};
};

void list(std::FILE* p_output) {
    std::string text;
    const auto add = [&text](const char* title, const std::vector<std::string>& lines) {
        text += std::string{title} + (lines.empty() ? ": none\n" : "\n");
        for (const std::string& line : lines)
            text += "  " + printable(line) + "\n";
    };
    add("JACK", jack_system_list());
    add("ALSA", alsa_system_list());
    print(p_output, text);
}

void save(plugin& instrument, const std::string& title, output_file& output) {
    std::fputs(registration_text(instrument, title).c_str(), output.stream());
    output.finish();
}

} // namespace

void play_run(const play_request& request, std::FILE* p_output) {
    if (request.lists)
        return list(p_output);
    if (request.forgets && !control_map_write(learned_file(), {}))
        throw failure{exit_failed,
                      "cannot write " + learned_file().string() + ": " + std::strerror(errno)};
    live_song song = make_song(request);
    instrument_try(request, [&request](plugin& instrument) {
        const console desk{instrument, players_options(request, instrument)};
    });
    const auto p_loaded = plugin_load(request.plugin_file);
    plugin& instrument = *p_loaded;
    instrument_set_up(instrument, request);
    const std::filesystem::path saved{request.saved_file};
    std::optional<output_file> output; // what cannot be written is said before hours of playing
    if (!saved.empty())
        output.emplace(saved);
    performance{request, instrument, std::move(song), p_output}.play();
    if (output)
        save(instrument, saved.stem().string(), *output);
}

std::string learned_text() {
    std::string text;
    for (const control_mapping& mapping : control_map_read(learned_file()))
        text += "--map " + control_mapping_text(mapping) + "\n";
    return text.empty() ? "No controller was learned; tindelwax play --learn learns some.\n" : text;
}
