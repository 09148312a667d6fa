#pragma once
/// A host of the built CLAP library, and the events that it sends.

#include "check/watched_calls.h"
#include "clap/interface.h"
#include "platform/library.h"
#include "platform/process.h"
#include "plugin/clap_stream.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

union any_event {
    clap_event_header header;
    clap_event_note note;
    clap_event_param_value value;
    clap_event_param_gesture gesture;
    clap_event_midi midi;
};

template <typename Event>
any_event event_at(std::uint32_t frame, std::uint16_t type, Event event) {
    event.header = {sizeof event, frame, CLAP_CORE_EVENT_SPACE_ID, type, 0};
    any_event any{};
    std::memcpy(&any, &event, sizeof event);
    return any;
}

inline any_event note_at(std::uint32_t frame, std::uint16_t type, int key, int channel = 0,
                         std::int32_t id = -1, int port = 0) {
    return event_at(frame, type,
                    clap_event_note{{},
                                    id,
                                    static_cast<std::int16_t>(port),
                                    static_cast<std::int16_t>(channel),
                                    static_cast<std::int16_t>(key),
                                    0});
}

inline any_event value_at(std::uint32_t frame, clap_id id, double value) {
    return event_at(frame, CLAP_EVENT_PARAM_VALUE,
                    clap_event_param_value{{}, id, nullptr, -1, -1, -1, -1, value});
}

inline any_event midi_at(std::uint32_t frame, std::array<int, 3> bytes) {
    return event_at(
        frame, CLAP_EVENT_MIDI,
        clap_event_midi{{},
                        0,
                        {static_cast<std::uint8_t>(bytes[0]), static_cast<std::uint8_t>(bytes[1]),
                         static_cast<std::uint8_t>(bytes[2])}});
}

using events = std::vector<any_event>;

inline const clap_plugin_entry& clap_library() {
    static const library file{CLAP_FILE};
    static const auto* const entry = static_cast<const clap_plugin_entry*>(file.find("clap_entry"));
    return *entry;
}

/// A host's stream that moves three bytes at a time, and fails where it has moved so many.
inline clap_stream stream_of(std::string bytes, std::size_t fails_at = std::string::npos) {
    return {.bytes = std::move(bytes), .piece = 3, .fails_at = fails_at};
}

class hosted {
public:
    explicit hosted(double rate = 48000, const char* seed = "1") {
        set_environment("TINDELWAX_SEED", seed);
        clap_library().init(CLAP_FILE);
        const auto* const factory = static_cast<const clap_plugin_factory*>(
            clap_library().get_factory(clap_plugin_factory_id));
        plugin =
            factory->create_plugin(factory, &host, factory->get_plugin_descriptor(factory, 0)->id);
        EXPECT_TRUE(plugin->init(plugin));
        activate(rate);
    }
    ~hosted() {
        plugin->deactivate(plugin);
        plugin->destroy(plugin);
        clap_library().deinit();
    }
    hosted(const hosted&) = delete;
    hosted& operator=(const hosted&) = delete;

    void activate(double rate) {
        EXPECT_TRUE(plugin->activate(plugin, rate, 1, 4096));
        EXPECT_TRUE(plugin->start_processing(plugin));
    }

    template <typename Extension>
    [[nodiscard]] const Extension& extension(const char* id) const {
        const auto* const found = static_cast<const Extension*>(plugin->get_extension(plugin, id));
        if (!found)
            std::abort();
        return *found;
    }
    [[nodiscard]] const clap_plugin_params& params() const {
        return extension<clap_plugin_params>(clap_params_id);
    }
    [[nodiscard]] double value(clap_id id) const {
        double read = -1;
        EXPECT_TRUE(params().get_value(plugin, id, &read));
        return read;
    }

    /// Plays a block into `right` and `left`.
    clap_process_status process(std::size_t nb_frames, const events& in = {}) {
        right.assign(nb_frames, 1);
        left.assign(nb_frames, 1);
        float* channels[] = {right.data(), left.data()};
        output = {channels, nullptr, 2, 0, 0};
        return process_into(&output, nb_frames, &in);
    }

    /// Any pointer may be null. Nothing may be called that an audio thread must not call.
    clap_process_status process_into(clap_audio_buffer* buffer, std::size_t nb_frames,
                                     const events* in) {
        sent.clear();
        sent.reserve(10000);
        const clap_input_events received{const_cast<events*>(in), size, get};
        const clap_output_events taken{this, push};
        const clap_process block{.steady_time = -1,
                                 .frames_count = static_cast<std::uint32_t>(nb_frames),
                                 .transport = nullptr,
                                 .audio_inputs = nullptr,
                                 .audio_outputs = buffer,
                                 .audio_inputs_count = 0,
                                 .audio_outputs_count = buffer != nullptr,
                                 .in_events = in ? &received : nullptr,
                                 .out_events = in ? &taken : nullptr};
        watched_calls_begin();
        const clap_process_status status = plugin->process(plugin, &block);
        const watched_calls calls = watched_calls_end();
        EXPECT_EQ(std::accumulate(std::begin(calls.nb), std::end(calls.nb), 0L), 0);
        EXPECT_TRUE(std::ranges::is_sorted(sent, {}, [](const auto& e) { return e.header.time; }));
        return status;
    }

    [[nodiscard]] float peak() const {
        float highest = 0;
        for (const auto* channel : {&right, &left})
            for (const float sample : *channel)
                highest = std::max(highest, std::fabs(sample));
        return highest;
    }

    const clap_plugin* plugin;
    std::vector<float> right, left;
    events sent;
    clap_audio_buffer output{};
    bool takes_events = true;
    int nb_rescans = 0;
    int nb_flushes = 0;
    bool has_timers = true;
    int nb_timers = 0;  ///< that run
    std::string loaded; ///< the last preset's key
    int nb_refused = 0; ///< presets

private:
    static std::uint32_t size(const clap_input_events* list) noexcept NONBLOCKING {
        return static_cast<std::uint32_t>(static_cast<const events*>(list->ctx)->size());
    }
    static const clap_event_header* get(const clap_input_events* list,
                                        std::uint32_t index) noexcept NONBLOCKING {
        const any_event& event = (*static_cast<const events*>(list->ctx))[index];
        return event.header.size == 0 ? nullptr : &event.header;
    }
    static bool push(const clap_output_events* list,
                     const clap_event_header* event) noexcept NONBLOCKING {
        auto& self = *static_cast<hosted*>(list->ctx);
        any_event copy{};
        std::memcpy(&copy, event, event->size);
        NONBLOCKING_UNCHECKED_BEGIN // there is room
            if (self.takes_events) self.sent.push_back(copy);
        NONBLOCKING_UNCHECKED_END
        return self.takes_events;
    }
    static hosted& of(const clap_host* host) { return *static_cast<hosted*>(host->host_data); }

    static const void* get_extension(const clap_host* asking, const char* id) {
        static const clap_host_params params{
            [](const clap_host* host, clap_param_rescan_flags) { ++of(host).nb_rescans; }, nullptr,
            [](const clap_host* host) { ++of(host).nb_flushes; }};
        static const clap_host_timer_support timers{
            [](const clap_host* host, std::uint32_t, clap_id* timer) {
                *timer = 7;
                return ++of(host).nb_timers == 1;
            },
            [](const clap_host* host, clap_id timer) {
                return timer == 7 && of(host).nb_timers-- == 1;
            }};
        static const clap_host_preset_load presets{
            [](const clap_host* host, std::uint32_t, const char*, const char*, std::int32_t,
               const char*) { ++of(host).nb_refused; },
            [](const clap_host* host, std::uint32_t, const char*, const char* load_key) {
                of(host).loaded = load_key;
            }};
        const std::pair<std::string_view, const void*> known[] = {
            {clap_params_id, &params},
            {clap_timer_support_id, of(asking).has_timers ? &timers : nullptr},
            {clap_preset_load_id, &presets},
        };
        for (const auto& [name, extension] : known)
            if (name == id)
                return extension;
        return nullptr;
    }

    clap_host host{clap_interface_version, this, "tests", "", "", "1", get_extension, {}, {}, {}};
};
