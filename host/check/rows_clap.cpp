/// What CLAP alone has: ids, plain values, notes with addresses, sleep.

#include "check/rows.h"
#include "check/subject.h"
#include "plugin/loaded_clap.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <random>
#include <set>
#include <string_view>

namespace {

using random_numbers = std::mt19937;

constexpr double inaudible = 1e-6; // -120 dBFS

loaded_clap& clap_of(const subject& played) { return static_cast<loaded_clap&>(played.tested()); }

int draw(random_numbers& random, int least, int most) {
    return least + static_cast<int>(random() % static_cast<unsigned>(most - least + 1));
}

void descriptor(trial& running) {
    const subject asked(running);
    const loaded_clap& plugin = clap_of(asked);
    const clap_plugin_entry& entry = plugin.entry();
    const auto says = [](const char* text) { return text && *text; };
    running.expect(entry.clap_version.major == 1, "its library is of no version 1");
    running.expect(!entry.get_factory("unknown.factory"), "it has a factory that does not exist");
    const auto* factory =
        static_cast<const clap_plugin_factory*>(entry.get_factory(clap_plugin_factory_id));
    std::set<std::string> ids;
    for (std::uint32_t i = 0; i < factory->get_plugin_count(factory); ++i) {
        const clap_plugin_descriptor* const described = factory->get_plugin_descriptor(factory, i);
        if (!described || !says(described->id) || !says(described->name))
            throw row_end{verdict::failed, "a descriptor has no id or no name"};
        running.expect(ids.insert(described->id).second, "two plug-ins have one id");
        running.expect(described->features && described->features[0], "it has no features");
    }
    running.expect(std::string_view{plugin.raw().desc->id} == *ids.begin() || ids.size() > 1,
                   "the plug-in says another id than its factory");
    running.expect(!plugin.raw().get_extension(&plugin.raw(), "unknown.extension/1"),
                   "it has an extension that does not exist");
}

/// Whatever a host does not have, plug-ins go without.
void bare_host(trial& running) {
    const subject kept(running); // keeps the library initialised
    const clap_plugin_entry& entry = clap_of(kept).entry();
    const auto ignore = [](const clap_host*) {};
    const clap_host host{
        .clap_version = entry.clap_version,
        .host_data = nullptr,
        .name = "Bare",
        .vendor = "",
        .url = "",
        .version = "0",
        .get_extension = [](const clap_host*, const char*) -> const void* { return nullptr; },
        .request_restart = ignore,
        .request_process = ignore,
        .request_callback = ignore};
    const auto* factory =
        static_cast<const clap_plugin_factory*>(entry.get_factory(clap_plugin_factory_id));
    running.expect(!factory->create_plugin(factory, &host, "unknown.plugin"),
                   "it makes a plug-in that does not exist");
    const clap_plugin* const made =
        factory->create_plugin(factory, &host, clap_of(kept).raw().desc->id);
    if (!made || !made->init(made))
        throw row_end{verdict::failed, "it is not made in a host without extensions"};
    running.expect(made->activate(made, usual_rate, 1, usual_block), "it refuses to be activated");
    made->deactivate(made);
    made->destroy(made);
}

loaded_clap::event note(clap_event_type type, int frame, std::array<int, 4> address) {
    auto made = clap_make_event<clap_event_note>(type, frame);
    made.note_id = address[0];
    made.port_index = static_cast<std::int16_t>(address[1]);
    made.channel = static_cast<std::int16_t>(address[2]);
    made.key = static_cast<std::int16_t>(address[3]);
    made.velocity = 0.8;
    return {.note = made};
}

loaded_clap::event setting(const clap_param_info& info, int frame, double value) {
    auto made = clap_make_event<clap_event_param_value>(CLAP_EVENT_PARAM_VALUE, frame);
    made.param_id = info.id;
    made.cookie = info.cookie;
    made.note_id = made.port_index = made.channel = made.key = -1;
    made.value = value;
    return {.setting = made};
}

/// Plays blocks of such notes, and plays on.
void plays_notes(trial& running,
                 const std::function<loaded_clap::event(random_numbers&, int frame)>& make) {
    subject played(running, usual_rate, usual_block);
    require_outputs(running, played);
    random_numbers random(running.seed);
    for (int i = 0; i < 200; ++i) {
        for (int nb = draw(random, 0, 8); nb > 0; --nb)
            clap_of(played).send(make(random, draw(random, 0, usual_block - 1)));
        played.play(usual_block);
    }
    played.expect_finite();
    played.expect_plays(false);
}

clap_event_type any_note(random_numbers& random) {
    return static_cast<clap_event_type>(
        draw(random, int{CLAP_EVENT_NOTE_ON}, int{CLAP_EVENT_NOTE_CHOKE}));
}

/// Ends of notes that never began, ids that belong to another key.
void inconsistent_notes(trial& running) {
    plays_notes(running, [](random_numbers& random, int frame) {
        return note(any_note(random), frame,
                    {draw(random, -1, 100), 0, draw(random, 0, 15), draw(random, 0, 127)});
    });
}

void wildcards(trial& running) {
    plays_notes(running, [](random_numbers& random, int frame) {
        if (random() % 2)
            return note(CLAP_EVENT_NOTE_ON, frame, {-1, 0, 0, draw(random, 36, 84)});
        return note(random() % 2 ? CLAP_EVENT_NOTE_OFF : CLAP_EVENT_NOTE_CHOKE, frame,
                    {-1, draw(random, -1, 0), draw(random, -1, 0), draw(random, -1, 84)});
    });
}

struct parameter_list {
    const clap_plugin_params* functions;
    std::vector<clap_param_info> infos;
};

parameter_list parameters_of(const trial& running, const subject& asked) {
    const loaded_clap& plugin = clap_of(asked);
    const auto* params = plugin.extension<clap_plugin_params>(clap_params_id);
    if (!params || params->count(&plugin.raw()) == 0)
        running.skip("it has no parameters");
    std::vector<clap_param_info> infos(params->count(&plugin.raw()));
    for (std::uint32_t i = 0; i < infos.size(); ++i)
        running.expect(params->get_info(&plugin.raw(), i, &infos[i]),
                       "it says nothing of a parameter");
    return {params, std::move(infos)};
}

/// Plug-ins may keep values in single precision.
bool is_near(double value, double wanted, const clap_param_info& info) {
    return std::abs(value - wanted) <= 1e-6 * (1 + std::abs(info.max_value - info.min_value));
}

/// What the host may move.
bool is_free(const clap_param_info& info) { return !(info.flags & CLAP_PARAM_IS_READONLY); }

void bounds(trial& running) {
    const subject asked(running);
    const clap_plugin& plugin = clap_of(asked).raw();
    const auto [params, infos] = parameters_of(running, asked);
    std::set<clap_id> ids;
    for (const clap_param_info& info : infos) {
        running.doing("parameter " + std::string{info.name});
        double value = 0;
        running.expect(ids.insert(info.id).second, "its id is another's, too");
        running.expect(info.name[0], "it has no name");
        running.expect(info.min_value <= info.default_value && info.default_value <= info.max_value,
                       "its default is out of its bounds");
        running.expect(params->get_value(&plugin, info.id, &value), "it has no value");
        running.prefer(is_near(value, info.default_value, info),
                       "it does not begin with its default");
        const bool is_whole = info.min_value == std::round(info.min_value)
                              && info.max_value == std::round(info.max_value);
        running.expect(is_whole || !(info.flags & CLAP_PARAM_IS_STEPPED),
                       "it goes in steps between bounds that are none");
    }
    running.doing("");
    clap_param_info none{};
    double value = 0;
    const clap_id unknown = *ids.rbegin() + 1;
    running.expect(!params->get_info(&plugin, static_cast<std::uint32_t>(infos.size()), &none)
                       && !params->get_value(&plugin, unknown, &value),
                   "it answers for a parameter that does not exist");
}

/// Every value's text is a value with that text.
void texts(trial& running) {
    const subject asked(running);
    const clap_plugin& plugin = clap_of(asked).raw();
    const auto [params, infos] = parameters_of(running, asked);
    for (const clap_param_info& info : infos) {
        running.doing("parameter " + std::string{info.name});
        for (int i = 0; i <= 20; ++i) {
            double value = info.min_value + (info.max_value - info.min_value) * i / 20;
            if (info.flags & CLAP_PARAM_IS_STEPPED)
                value = std::round(value);
            const guarded_memory first(CLAP_NAME_SIZE), second(CLAP_NAME_SIZE);
            running.expect(
                params->value_to_text(&plugin, info.id, value, first.data(), CLAP_NAME_SIZE)
                    && first.text(),
                "it writes no text of a value");
            double back = 0;
            if (!params->text_to_value(&plugin, info.id, first.data(), &back)) {
                running.prefer(false, "it does not understand its own text");
                break;
            }
            running.expect(
                params->value_to_text(&plugin, info.id, back, second.data(), CLAP_NAME_SIZE)
                    && second.text() == first.text(),
                "\"" + std::string{first.text().value_or("")} + "\" comes back as another text");
        }
        const guarded_memory narrow(3);
        params->value_to_text(&plugin, info.id, info.max_value, narrow.data(), 3);
        running.expect(narrow.front_holds(), "it writes in front of the memory");
    }
    running.doing("");
}

void automation(trial& running) {
    subject played(running, usual_rate, usual_block);
    require_outputs(running, played);
    auto [params, infos] = parameters_of(running, played);
    std::erase_if(infos, [](const clap_param_info& info) { return !is_free(info); });
    if (infos.empty())
        running.skip("its host may move none of its parameters");
    random_numbers random(running.seed);
    std::vector<double> last(infos.size());
    const auto set = [&](std::size_t i, int frame) {
        const clap_param_info& info = infos[i];
        last[i] =
            info.min_value + (info.max_value - info.min_value) * draw(random, 0, 1000) / 1000.0;
        if (info.flags & CLAP_PARAM_IS_STEPPED)
            last[i] = std::round(last[i]);
        clap_of(played).send(setting(info, frame, last[i]));
    };
    for (std::size_t i = 0; i < infos.size(); ++i)
        set(i, 0);
    played.strike(middle_note);
    for (int block = 0; block < 100; ++block) {
        for (int frame = 0; frame < usual_block; frame += draw(random, 1, 16))
            set(random() % infos.size(), frame);
        played.play(usual_block);
    }
    played.expect_finite();
    played.expect_written();
    for (std::size_t i = 0; i < infos.size(); ++i) {
        double value = 0;
        params->get_value(&clap_of(played).raw(), infos[i].id, &value);
        running.expect(is_near(value, last[i], infos[i]),
                       std::string{infos[i].name} + " is not where it was set last");
    }
}

/// Sent while nothing is processed, and while it is not even activated.
void flushed(trial& running) {
    const subject asked(running);
    const auto [params, infos] = parameters_of(running, asked);
    for (std::size_t i = 0; i < infos.size(); ++i) {
        double value = 0;
        asked.set(static_cast<int>(i), 1); // the host flushes where nothing runs
        params->get_value(&clap_of(asked).raw(), infos[i].id, &value);
        running.expect(!is_free(infos[i]) || is_near(value, infos[i].max_value, infos[i]),
                       std::string{infos[i].name} + " does not take what is flushed");
    }
}

void reset(trial& running) {
    require_sound(running);
    subject played(running, usual_rate, usual_block);
    played.strike(middle_note);
    played.play_long(usual_rate / 10);
    clap_of(played).raw().reset(&clap_of(played).raw());
    played.forget();
    played.play_long(usual_rate / 10);
    running.expect(played.loudest() < 1e-3, "what it played sounds on after its reset");
    played.expect_plays(true);
}

void sleeps_when_silent(trial& running) {
    require_sound(running);
    subject played(running, usual_rate, usual_block);
    played.strike(middle_note);
    played.play_long(usual_rate / 4);
    played.let_go(middle_note);
    const auto sleeps = [&] { return clap_of(played).status() == CLAP_PROCESS_SLEEP; };
    constexpr int longest_wait = 60; // seconds
    for (int done = 0; !sleeps() && done < longest_wait * usual_rate; done += usual_block) {
        played.forget();
        played.play(usual_block);
    }
    if (!sleeps())
        running.skip("it never sleeps");
    played.forget();
    played.play(usual_block);
    running.expect(played.loudest() < inaudible, "it sleeps while it sounds");
    played.expect_plays(true);
}

void transport(trial& running) {
    subject played(running, usual_rate, usual_block);
    require_outputs(running, played);
    random_numbers random(running.seed);
    auto song = clap_make_event<clap_event_transport>(CLAP_EVENT_TRANSPORT, 0);
    for (int i = 0; i < 100; ++i) {
        song.flags = random() % 256;
        song.song_pos_beats = static_cast<std::int64_t>(random()) << draw(random, 0, 31);
        song.song_pos_seconds = -static_cast<std::int64_t>(random());
        song.tempo = draw(random, 1, 999);
        song.tempo_inc = draw(random, -10, 10) / 100.0;
        song.bar_number = draw(random, -5, 5000);
        song.tsig_num = static_cast<std::uint16_t>(draw(random, 1, 16));
        song.tsig_denom = static_cast<std::uint16_t>(1 << draw(random, 0, 5));
        clap_of(played).set_transport(random() % 4 ? &song : nullptr);
        if (i % 10 == 0)
            played.strike(middle_note + i / 10);
        played.play(usual_block);
    }
    played.expect_finite();
}

void odd_rates(trial& running) {
    for (const double rate : {1000.0, 7999.5, 12345.678, 44099.9, 352800.0, 768000.0}) {
        running.doing("a rate of " + std::to_string(rate));
        subject played(running);
        require_outputs(running, played);
        played.tested().prepare(rate, usual_block);
        played.resume();
        played.expect_plays(false);
    }
    running.doing("");
}

void damaged_states(trial& running) {
    subject played(running, usual_rate, usual_block);
    const std::optional<std::string> state = played.tested().save();
    if (!state || state->empty())
        running.skip("it leaves saving to its host");
    running.prefer(!played.tested().load(""), "it takes an empty state");
    random_numbers random(running.seed);
    for (int i = 0; i < 50; ++i) {
        std::string bytes(random() % 4096, '\0');
        std::ranges::generate(bytes, [&] { return static_cast<char>(random()); });
        if (i % 2) { // its own, with one byte wrong
            bytes = *state;
            bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        (void)played.tested().load(bytes);
        played.play(usual_block);
    }
    played.expect_finite();
    running.expect(played.tested().load(*state), "it refuses its own state afterwards");
    played.expect_plays(false);
}

void states_in_pieces(trial& running) {
    const subject saved(running);
    const std::optional<std::string> state = saved.tested().save();
    if (!state)
        running.skip("it leaves saving to its host");
    for (const std::size_t piece : {1u, 17u}) {
        clap_of(saved).set_stream_piece(piece);
        running.expect(saved.tested().save() == state,
                       "it writes another state into a stream of small pieces");
        running.expect(saved.tested().load(*state), "it reads no state in small pieces");
    }
}

} // namespace

table clap_rows() {
    return only(plugin_format::clap,
                {{"clap/descriptor", demand::interface, descriptor},
                 {"clap/host without extensions", demand::interface, bare_host},
                 {"clap/inconsistent notes", demand::interface, inconsistent_notes},
                 {"clap/wildcards", demand::interface, wildcards},
                 {"clap/parameters within bounds", demand::interface, bounds},
                 {"clap/parameters as texts", demand::interface, texts},
                 {"clap/automation at any frame", demand::interface, automation},
                 {"clap/flushed parameters", demand::interface, flushed},
                 {"clap/reset", demand::interface, reset},
                 {"clap/sleep", demand::interface, sleeps_when_silent},
                 {"clap/transport", demand::interface, transport},
                 {"clap/odd rates", demand::hosts, odd_rates},
                 {"clap/damaged states", demand::interface, damaged_states},
                 {"clap/states in pieces", demand::interface, states_in_pieces}});
}
