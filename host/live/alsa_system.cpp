#include "live/arrival_clock.h"
#include "live/sound_system.h"

#include <RtAudio.h>
#include <RtMidi.h>
#include <algorithm>
#include <alsa/asoundlib.h>
#include <chrono>
#include <future>
#include <pthread.h>
#include <thread>
#include <utility>

namespace {

using namespace std::chrono_literals;
using steady = std::chrono::steady_clock;

constexpr unsigned max_outputs = 2;
constexpr unsigned nb_periods = 3;
constexpr std::size_t max_inputs = 32;
constexpr std::size_t max_block_messages = 1024;
constexpr int priority = 20; // above what else a desktop runs
constexpr double load_share = 0.02;
constexpr auto start_patience = 500ms;
constexpr auto end_patience = 500ms;
constexpr auto silence_patience = 5s; // a server may take two before its first block
constexpr auto between_looks = 100ms; // sooner than a device comes back that was reset

double seconds_now() {
    return std::chrono::duration<double>(steady::now().time_since_epoch()).count();
}

void say_nothing(const char*, int, const char*, int, const char*, ...) {}

/// The library's own sentences tell of devices that it does not find.
void silence_library() { snd_lib_error_set_handler(say_nothing); }

// The end of the sentence by which the library tells that it went on after an underrun. All its
// other errors in a stream are the last: it would try again and again without a pause.
constexpr std::string_view recovered_underrun = "underrun.";

// The library tells of the stream's errors, but not whose; a process plays one stream.
std::atomic<bool> stream_failed = false;

struct output_device {
    unsigned id;
    RtAudio::DeviceInfo info;
};

std::vector<output_device> find_outputs(RtAudio& audio) {
    std::vector<output_device> found;
    const unsigned nb_devices = audio.getDeviceCount();
    for (unsigned i = 0; i < nb_devices; ++i)
        if (auto info = audio.getDeviceInfo(i); info.probed && info.outputChannels > 0)
            found.push_back({i, std::move(info)});
    return found;
}

/// Null without a sequencer. The library prints that before it throws it, so that it is asked for
/// here.
std::unique_ptr<RtMidiIn> open_midi() {
    snd_seq_t* p_sequencer = nullptr;
    if (snd_seq_open(&p_sequencer, "default", SND_SEQ_OPEN_INPUT, SND_SEQ_NONBLOCK) != 0)
        return nullptr;
    snd_seq_close(p_sequencer);
    try {
        auto midi = std::make_unique<RtMidiIn>(RtMidi::LINUX_ALSA, "tindelwax");
        midi->setErrorCallback([](RtMidiError::Type, const std::string&, void*) {});
        return midi;
    } catch (const RtMidiError&) {
        return nullptr;
    }
}

/// By their numbers; each name ends with the sequencer's numbers and so is one port's alone.
std::vector<std::string> source_names(RtMidiIn& midi) {
    std::vector<std::string> names(midi.getPortCount());
    for (unsigned i = 0; i < names.size(); ++i)
        names[i] = midi.getPortName(i);
    return names;
}

/// A place for a source of messages.
struct midi_input {
    std::string name{}; // empty while the place is free
    std::unique_ptr<RtMidiIn> port{};
    arrival_clock clock{}; // its thread's
    message_queue queue{};
    std::optional<timed_message> next{}; // the audio thread's: out of the queue, but not yet due

    bool open(const std::string& source, unsigned number) {
        port = open_midi();
        if (!port)
            return false;
        clock = {};
        port->setCallback([](double delta, std::vector<unsigned char>* p_bytes,
                             void* self) { static_cast<midi_input*>(self)->take(delta, *p_bytes); },
                          this);
        port->openPort(number, source);
        if (!port->isPortOpen())
            return false;
        name = source;
        return true;
    }

    void close() {
        port.reset();
        name.clear();
    }

    void take(double delta, const std::vector<unsigned char>& bytes) {
        timed_message message;
        message.seconds = clock.arrival(delta, seconds_now());
        message.nb_bytes = static_cast<std::uint8_t>(bytes.size());
        if (bytes.size() > message.bytes.size())
            return;
        std::ranges::copy(bytes, message.bytes.begin());
        queue.push(message);
    }
};

class alsa_system : public sound_system {
public:
    alsa_system(live_instrument& instrument, const sound_wishes& wishes)
        : instrument_{instrument}, wishes_{wishes} {
        messages_.reserve(max_block_messages);
    }

    /// A device that hangs keeps the thread that ends its stream; nobody waits for that.
    ~alsa_system() override {
        stream_->p_player = nullptr;
        std::promise<void> ended;
        const auto end = ended.get_future();
        std::thread{[](std::unique_ptr<stream> ending, std::promise<void> promise) {
                        ending.reset();
                        promise.set_value();
                    },
                    std::move(stream_), std::move(ended)}
            .detach();
        end.wait_for(end_patience);
        instrument_.stop();
    }
    alsa_system(const alsa_system&) = delete;
    alsa_system& operator=(const alsa_system&) = delete;

    bool start() {
        try {
            if (!open())
                return false;
            instrument_.start(rate_hz_);
            audio().startStream();
        } catch (const RtAudioError&) {
            return false;
        }
        wait_for_thread();
        return tend();
    }

    bool tend() override {
        const auto now = steady::now();
        if (std::exchange(nb_blocks_seen_, nb_blocks_) != nb_blocks_seen_)
            last_progress_ = now;
        if (stream_failed || !audio().isStreamRunning() || now - last_progress_ > silence_patience)
            return false;
        if (nb_blocks_ >= release_block_) {
            release_block_ = never;
            instrument_.release_keys();
        }
        if (now - last_look_ > between_looks) {
            last_look_ = now;
            look_for_inputs();
        }
        return true;
    }

    sound_status status() const override {
        return {.system = "ALSA",
                .name = device_,
                .device = device_,
                .rate_hz = rate_hz_,
                .block_frames = static_cast<int>(block_frames_),
                .delay_ms = 1000 * delay_,
                .load = load_,
                .nb_underruns = nb_underruns_,
                .remark = remark_};
    }

    std::vector<std::string> take_news() override { return std::exchange(news_, {}); }

private:
    /// What lives until the library's thread has ended.
    struct stream {
        std::atomic<alsa_system*> p_player; // null once nobody listens
        RtAudio audio{RtAudio::LINUX_ALSA};
    };

    RtAudio& audio() { return stream_->audio; }

    bool open() {
        // Those of a search are not told but printed.
        audio().showWarnings(false);
        RtAudio::StreamParameters place{.deviceId = 0, .nChannels = max_outputs, .firstChannel = 0};
        RtAudio::StreamOptions options{.flags = RTAUDIO_NONINTERLEAVED | RTAUDIO_MINIMIZE_LATENCY,
                                       .numberOfBuffers = nb_periods,
                                       .streamName = "tindelwax"};
        if (wishes_.device.empty()) {
            device_ = "default";
            options.flags |= RTAUDIO_ALSA_USE_DEFAULT;
        } else {
            const auto outputs = find_outputs(audio());
            const auto wished = std::ranges::find_if(outputs, [this](const output_device& output) {
                return output.info.name.find(wishes_.device) != std::string::npos;
            });
            if (wished == outputs.end())
                return false;
            device_ = wished->info.name;
            place.deviceId = wished->id;
            place.nChannels = std::min(max_outputs, wished->info.outputChannels);
        }
        nb_outputs_ = place.nChannels;
        auto block_frames = static_cast<unsigned>(wishes_.block_frames);
        stream_failed = false;
        audio().openStream(
            &place, nullptr, RTAUDIO_FLOAT32, static_cast<unsigned>(wishes_.rate_hz), &block_frames,
            [](void* p_samples, void*, unsigned, double, RtAudioStreamStatus status, void* self) {
                alsa_system* p_player = static_cast<stream*>(self)->p_player;
                if (!p_player || stream_failed)
                    return 2; // ends the stream at once
                p_player->play(static_cast<float*>(p_samples), status);
                return 0;
            },
            stream_.get(), &options,
            [](RtAudioError::Type, const std::string& text) {
                stream_failed = stream_failed || !text.ends_with(recovered_underrun);
            });
        if (!audio().isStreamOpen())
            return false;
        audio().showWarnings(true);
        block_frames_ = block_frames;
        rate_hz_ = static_cast<int>(audio().getStreamSampleRate());
        blocks_ = {block_frames, rate_hz_};
        delay_ = options.numberOfBuffers * block_frames / static_cast<double>(rate_hz_)
                 + blocks_.delay();
        return true;
    }

    /// The library could ask for the priority, but prints how that went.
    void wait_for_thread() {
        last_progress_ = steady::now();
        while (!thread_ && steady::now() - last_progress_ < start_patience)
            std::this_thread::sleep_for(1ms);
        const sched_param wanted{.sched_priority = priority};
        if (thread_ && pthread_setschedparam(thread_, SCHED_FIFO, &wanted) != 0)
            remark_ = no_priority;
    }

    void play(float* p_samples, RtAudioStreamStatus status) noexcept {
        const double begin = seconds_now();
        if (nb_blocks_ == 0)
            thread_ = pthread_self();
        if (status & RTAUDIO_OUTPUT_UNDERFLOW)
            ++nb_underruns_;
        blocks_.begin(begin);
        messages_.clear();
        for (midi_input& input : inputs_)
            take_messages(input);
        float* const outputs[max_outputs] = {p_samples, p_samples + block_frames_};
        instrument_.process(std::span{outputs, nb_outputs_}, block_frames_);
        if (const long latency = audio().getStreamLatency(); latency > 0)
            delay_ = static_cast<double>(latency) / rate_hz_ + blocks_.delay();
        const double load = (seconds_now() - begin) * rate_hz_ / static_cast<double>(block_frames_);
        load_ = load_ + load_share * (load - load_);
        ++nb_blocks_;
    }

    /// Those of the last block, to be heard in this.
    void take_messages(midi_input& input) noexcept {
        while (messages_.size() < max_block_messages) {
            if (!input.next)
                input.next = input.queue.pop();
            if (!input.next)
                return;
            const auto frame = blocks_.frame(input.next->seconds);
            if (!frame)
                return;
            messages_.push_back(*std::exchange(input.next, {}));
            instrument_.take(messages_.back().view(), *frame);
        }
    }

    [[nodiscard]] bool is_wanted(const std::string& source) const {
        return wishes_.midi.empty() ? !source.starts_with("Midi Through")
                                    : source.find(wishes_.midi) != std::string::npos;
    }

    void look_for_inputs() {
        if (!sources_)
            sources_ = open_midi();
        if (!sources_ && !std::exchange(has_told_absence_, true))
            news_.push_back(
                "no ALSA sequencer is there, so no MIDI; load it with modprobe snd-seq");
        if (!sources_)
            return;
        const auto names = source_names(*sources_);
        for (midi_input& input : inputs_)
            if (!input.name.empty() && std::ranges::find(names, input.name) == names.end()) {
                news_.push_back(input.name + " is gone");
                input.close();
                // What it still sent is played first.
                release_block_ = nb_blocks_ + nb_periods;
            }
        for (unsigned i = 0; i < names.size(); ++i)
            if (is_wanted(names[i]) && !find_input(names[i]))
                if (midi_input* p_free = find_input(""); p_free && p_free->open(names[i], i))
                    news_.push_back(names[i] + " plays");
    }

    midi_input* find_input(const std::string& name) {
        const auto found = std::ranges::find(inputs_, name, &midi_input::name);
        return found == inputs_.end() ? nullptr : &*found;
    }

    static constexpr long never = std::numeric_limits<long>::max();

    live_instrument& instrument_;
    sound_wishes wishes_;
    std::unique_ptr<stream> stream_{new stream{.p_player = this}};
    std::string device_{};
    unsigned nb_outputs_ = 0;
    std::size_t block_frames_ = 0;
    int rate_hz_ = 0;
    std::string remark_{};
    std::vector<std::string> news_{};
    bool has_told_absence_ = false;
    std::unique_ptr<RtMidiIn> sources_{}; // that lists them
    std::array<midi_input, max_inputs> inputs_{};
    steady::time_point last_look_{};
    steady::time_point last_progress_{};
    long nb_blocks_seen_ = 0;
    long release_block_ = never;

    // The audio thread's.
    block_clock blocks_{1, 1};
    std::vector<timed_message> messages_{}; // of this block

    std::atomic<pthread_t> thread_ = 0;
    std::atomic<double> delay_ = 0; // of a message, in seconds
    std::atomic<double> load_ = 0;
    std::atomic<long> nb_underruns_ = 0;
    std::atomic<long> nb_blocks_ = 0;
};

} // namespace

std::unique_ptr<sound_system> alsa_system_open(live_instrument& instrument,
                                               const sound_wishes& wishes) {
    silence_library();
    auto opened = std::make_unique<alsa_system>(instrument, wishes);
    return opened->start() ? std::move(opened) : nullptr;
}

std::vector<std::string> alsa_system_list() {
    silence_library();
    std::vector<std::string> lines;
    RtAudio audio{RtAudio::LINUX_ALSA};
    audio.showWarnings(false);
    for (const output_device& output : find_outputs(audio))
        lines.push_back("output  " + output.info.name);
    if (const auto midi = open_midi())
        for (const std::string& source : source_names(*midi))
            lines.push_back("midi    " + source);
    return lines;
}
