#include "live/sound_system.h"

#include "platform/process.h"

#include <algorithm>
#include <cerrno>
#include <jack/jack.h>
#include <jack/midiport.h>
#include <set>
#include <utility>

namespace {

constexpr int max_instances = 16;
constexpr std::size_t nb_outputs = 2;

struct client_closer {
    void operator()(jack_client_t* p_client) const { jack_client_close(p_client); }
};
using client_ptr = std::unique_ptr<jack_client_t, client_closer>;

void say_nothing(const char*) {}

/// The library's own sentences tell of servers that it does not find, and it would start one.
void keep_library_quiet() {
    jack_set_error_function(say_nothing);
    jack_set_info_function(say_nothing);
    set_environment("JACK_NO_START_SERVER", "1");
}

client_ptr open_client(const std::string& name, jack_status_t& status) {
    return client_ptr{jack_client_open(name.c_str(), JackUseExactName, &status)};
}

std::vector<std::string> port_names(jack_client_t* p_client, const char* type, unsigned long flags,
                                    const std::string& pattern = {}) {
    std::vector<std::string> names;
    const std::unique_ptr<const char* [], void (*)(void*)> found {
        jack_get_ports(p_client, pattern.c_str(), type, flags), jack_free
    };
    for (std::size_t i = 0; found && found[i]; ++i)
        names.emplace_back(found[i]);
    return names;
}

/// A port's name, and those that people know hardware by.
bool is_called(jack_client_t* p_client, const std::string& port, const std::string& part) {
    std::vector<char> first(static_cast<std::size_t>(jack_port_name_size()));
    std::vector<char> second(first.size());
    char* const aliases[] = {first.data(), second.data()};
    jack_port_get_aliases(jack_port_by_name(p_client, port.c_str()), aliases);
    for (const std::string& name : {port, std::string{first.data()}, std::string{second.data()}})
        if (name.find(part) != name.npos)
            return true;
    return false;
}

class jack_system : public sound_system {
public:
    jack_system(live_instrument& instrument, const sound_wishes& wishes, client_ptr client)
        : instrument_{instrument},
          wishes_{wishes},
          p_closing_{client.get()},
          client_{std::move(client)} {}

    ~jack_system() override {
        client_.reset(); // the audio thread ends here
        instrument_.stop();
    }
    jack_system(const jack_system&) = delete;
    jack_system& operator=(const jack_system&) = delete;

    bool start() {
        rate_hz_ = static_cast<int>(jack_get_sample_rate(client_.get()));
        instrument_.start(rate_hz_);
        midi_ = add_port("midi_in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput);
        for (std::size_t i = 0; i < nb_outputs; ++i)
            outputs_[i] = add_port("out_" + std::to_string(i + 1), JACK_DEFAULT_AUDIO_TYPE,
                                   JackPortIsOutput | JackPortIsTerminal);
        if (!midi_ || !outputs_[0] || !outputs_[1])
            return false;
        // One server calls both when it ends, another the latter alone.
        jack_on_info_shutdown(
            client_.get(),
            [](jack_status_t, const char*, void* self) { as_system(self).gone_ = true; }, this);
        jack_on_shutdown(
            client_.get(), [](void* self) { as_system(self).gone_ = true; }, this);
        jack_set_xrun_callback(
            client_.get(), [](void* self) { return ++as_system(self).nb_underruns_, 0; }, this);
        jack_set_port_connect_callback(
            client_.get(),
            [](jack_port_id_t one, jack_port_id_t other, int connects, void* self) {
                as_system(self).hear_connection(one, other, connects != 0);
            },
            this);
        jack_set_process_callback(
            client_.get(),
            [](jack_nframes_t nb_frames, void* self) {
                as_system(self).process(nb_frames);
                return 0;
            },
            this);
        return jack_activate(client_.get()) == 0 && tend();
    }

    bool tend() override {
        if (!gone_ && static_cast<int>(jack_get_sample_rate(client_.get())) != rate_hz_) {
            news_.emplace_back("the server has another rate");
            gone_ = true;
        }
        if (gone_)
            return false;
        if (wishes_.connects) {
            connect_outputs();
            connect_inputs();
        }
        if (lost_input_.exchange(false))
            instrument_.release_keys();
        return true;
    }

    sound_status status() const override {
        const int block_frames = static_cast<int>(jack_get_buffer_size(client_.get()));
        jack_latency_range_t delay{};
        jack_port_get_latency_range(outputs_[0], JackPlaybackLatency, &delay);
        const auto delay_frames = std::max<double>(delay.max, block_frames);
        return {.system = "JACK",
                .name = jack_get_client_name(client_.get()),
                .device = device(),
                .rate_hz = rate_hz_,
                .block_frames = block_frames,
                .delay_ms = 1000 * delay_frames / rate_hz_,
                .load = static_cast<double>(jack_cpu_load(client_.get())) / 100,
                .nb_underruns = nb_underruns_,
                .remark = remark()};
    }

    std::vector<std::string> take_news() override { return std::exchange(news_, {}); }

private:
    static jack_system& as_system(void* self) { return *static_cast<jack_system*>(self); }

    jack_port_t* add_port(const std::string& name, const char* type, unsigned long flags) {
        return jack_port_register(client_.get(), name.c_str(), type, flags, 0);
    }

    void process(jack_nframes_t nb_frames) noexcept {
        void* p_messages = jack_port_get_buffer(midi_, nb_frames);
        const std::uint32_t nb_messages = jack_midi_get_event_count(p_messages);
        for (std::uint32_t i = 0; i < nb_messages; ++i) {
            jack_midi_event_t event{};
            if (jack_midi_event_get(&event, p_messages, i) == 0)
                instrument_.take({event.buffer, event.size}, event.time);
        }
        std::array<float*, nb_outputs> samples{};
        for (std::size_t i = 0; i < nb_outputs; ++i)
            samples[i] = static_cast<float*>(jack_port_get_buffer(outputs_[i], nb_frames));
        instrument_.process(samples, nb_frames);
    }

    std::string device() const {
        return speakers_.empty() ? "" : speakers_[0].substr(0, speakers_[0].find(':'));
    }

    /// How to get the real-time priority that is missing.
    std::string remark() const {
        if (!jack_is_realtime(client_.get()))
            return "the JACK server runs without real-time priority; start it with -R";
        int policy = SCHED_OTHER;
        sched_param parameters{};
        pthread_getschedparam(jack_client_thread_id(client_.get()), &policy, &parameters);
        return (policy & (SCHED_FIFO | SCHED_RR)) != 0 ? "" : no_priority;
    }

    /// One way or another an input has gone, though another may have come since.
    void hear_connection(jack_port_id_t one, jack_port_id_t other, bool connects) {
        if (!connects)
            for (const jack_port_id_t id : {one, other})
                if (jack_port_by_id(p_closing_, id) == midi_)
                    lost_input_ = true;
    }

    /// Each speaker once, as it comes, like the sources below.
    void connect_outputs() {
        auto speakers = wishes_.device.empty()
                            ? port_names(client_.get(), JACK_DEFAULT_AUDIO_TYPE,
                                         JackPortIsPhysical | JackPortIsInput)
                            : port_names(client_.get(), JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput);
        std::erase_if(speakers, [this](const std::string& port) {
            return !is_called(client_.get(), port, wishes_.device);
        });
        speakers.resize(std::min(nb_outputs, speakers.size()));
        if (speakers.empty() && !std::exchange(has_told_silence_, true))
            news_.emplace_back("no output is there to connect to; a patch bay may do it");
        if (speakers == speakers_)
            return;
        for (std::size_t i = 0; i < speakers.size(); ++i)
            if (std::ranges::find(speakers_, speakers[i]) == speakers_.end()
                && !connect(jack_port_name(outputs_[i]), speakers[i]))
                return; // its owner does not run yet
        speakers_ = std::move(speakers);
        has_told_silence_ = speakers_.empty();
        news_.push_back(speakers_.empty() ? "the outputs are gone" : "sounds through " + device());
    }

    /// Each source once, as it comes: the player may take it away again.
    void connect_inputs() {
        const auto flags = JackPortIsOutput | (wishes_.midi.empty() ? JackPortIsPhysical : 0);
        auto sources =
            port_names(client_.get(), JACK_DEFAULT_MIDI_TYPE, static_cast<unsigned long>(flags));
        std::erase_if(sources, [this](const std::string& port) {
            return !is_called(client_.get(), port, wishes_.midi);
        });
        std::erase_if(sources_, [&](const std::string& port) {
            const bool is_gone = std::ranges::find(sources, port) == sources.end();
            if (is_gone) {
                news_.push_back(port + " is gone");
                lost_input_ = true; // not every server tells of each
            }
            return is_gone;
        });
        for (const std::string& port : sources)
            if (!sources_.contains(port) && connect(port, jack_port_name(midi_))) {
                sources_.insert(port);
                news_.push_back(port + " plays");
            }
    }

    /// Returns false where a port's owner does not run yet: it is seen before that.
    bool connect(const std::string& source, const std::string& destination) {
        const int result = jack_connect(client_.get(), source.c_str(), destination.c_str());
        return result == 0 || result == EEXIST;
    }

    live_instrument& instrument_;
    sound_wishes wishes_;
    jack_port_t* midi_ = nullptr;
    std::array<jack_port_t*, nb_outputs> outputs_{};
    int rate_hz_ = 0;
    std::vector<std::string> speakers_{};
    std::set<std::string> sources_{};
    bool has_told_silence_ = false;
    std::vector<std::string> news_{};
    std::atomic<bool> gone_ = false;
    std::atomic<bool> lost_input_ = false;
    std::atomic<long> nb_underruns_ = 0;
    jack_client_t* p_closing_; // the same, for what is heard until it has ended
    client_ptr client_;        // last, so that it ends first
};

} // namespace

std::unique_ptr<sound_system> jack_system_open(live_instrument& instrument,
                                               const sound_wishes& wishes) {
    keep_library_quiet();
    for (int i = 1; i <= max_instances; ++i) {
        jack_status_t status = JackFailure;
        const std::string name = "tindelwax" + (i == 1 ? "" : "-" + std::to_string(i));
        auto client = open_client(name, status);
        if (!client && status & JackServerFailed)
            return nullptr;
        if (!client || !port_names(client.get(), nullptr, 0, "^" + name + ":").empty())
            continue; // somebody has that name, which some servers give to two
        auto opened = std::make_unique<jack_system>(instrument, wishes, std::move(client));
        if (opened->start())
            return opened;
        return nullptr;
    }
    return nullptr;
}

std::vector<std::string> jack_system_list() {
    keep_library_quiet();
    jack_status_t status = JackFailure;
    const client_ptr client = open_client("tindelwax-list", status);
    std::vector<std::string> lines;
    if (!client)
        return lines;
    for (const std::string& port :
         port_names(client.get(), JACK_DEFAULT_AUDIO_TYPE, JackPortIsPhysical | JackPortIsInput))
        lines.push_back("output  " + port);
    for (const std::string& port :
         port_names(client.get(), JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput))
        lines.push_back("midi    " + port);
    return lines;
}
