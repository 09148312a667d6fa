// What CLAP hosts hand over: events that say of themselves what they like, in any order, in memory
// that ends where they say; and states, in streams that move few bytes at a time. A state that is
// refused changes nothing, and whatever came before, what is saved can be loaded.

#include "clap/interface.h"
#include "fuzz/fuzzed.h"
#include "plugin/clap_stream.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

extern "C" const clap_plugin_entry clap_entry;

namespace {

class hosted {
public:
    hosted() {
        setenv("TINDELWAX_SEED", "1", 1);
        const auto* const factory =
            static_cast<const clap_plugin_factory*>(clap_entry.get_factory(clap_plugin_factory_id));
        plugin =
            factory->create_plugin(factory, &host, factory->get_plugin_descriptor(factory, 0)->id);
        require(plugin->init(plugin) && plugin->activate(plugin, 22050, 1, 255)
                && plugin->start_processing(plugin));
        state = static_cast<const clap_plugin_state*>(plugin->get_extension(plugin, clap_state_id));
    }
    ~hosted() {
        plugin->stop_processing(plugin);
        plugin->deactivate(plugin);
        plugin->destroy(plugin);
    }
    hosted(const hosted&) = delete;
    hosted& operator=(const hosted&) = delete;

    [[nodiscard]] std::string save() const {
        clap_stream saved{.piece = 7};
        const clap_ostream out = saved.output();
        require(state->save(plugin, &out));
        return saved.bytes;
    }
    [[nodiscard]] bool load(const std::string& bytes, std::size_t nb_at_once) const {
        clap_stream loaded{.bytes = bytes, .piece = nb_at_once};
        const clap_istream in = loaded.input();
        return state->load(plugin, &in);
    }

    void process(FuzzedDataProvider& data) const {
        const auto events = take_events(data);
        const clap_input_events in{const_cast<event_memory*>(&events), nb_events, event_at};
        bool takes_events = data.ConsumeBool();
        const clap_output_events out{&takes_events, push};
        const auto nb_frames = data.ConsumeIntegralInRange<std::uint32_t>(1, 255);
        std::vector<float> right(nb_frames), left(nb_frames);
        float* channels[] = {right.data(), left.data()};
        clap_audio_buffer output{channels, nullptr, 2, 0, 0};
        const clap_process block{.steady_time = -1,
                                 .frames_count = nb_frames,
                                 .transport = nullptr,
                                 .audio_inputs = nullptr,
                                 .audio_outputs = &output,
                                 .audio_inputs_count = 0,
                                 .audio_outputs_count = 1,
                                 .in_events = &in,
                                 .out_events = &out};
        require(plugin->process(plugin, &block) != CLAP_PROCESS_ERROR);
        for (const auto& channel : {right, left})
            require(
                std::ranges::all_of(channel, [](float sample) { return std::isfinite(sample); }));
    }

private:
    using event_memory = std::vector<std::unique_ptr<char[]>>;

    static event_memory take_events(FuzzedDataProvider& data) {
        event_memory events(data.ConsumeIntegralInRange<std::size_t>(0, 20));
        for (auto& memory : events) {
            const auto content =
                data.ConsumeBytes<char>(data.ConsumeIntegralInRange<std::size_t>(0, 50));
            const clap_event_header header{
                .size = static_cast<std::uint32_t>(sizeof header + content.size()),
                .time = data.ConsumeIntegral<std::uint32_t>(),
                .space_id = data.ConsumeBool(),
                .type = data.ConsumeIntegralInRange<std::uint16_t>(0, CLAP_EVENT_MIDI + 1),
                .flags = data.ConsumeIntegral<std::uint32_t>()};
            memory = std::make_unique<char[]>(header.size);
            std::memcpy(memory.get(), &header, sizeof header);
            std::ranges::copy(content, memory.get() + sizeof header);
        }
        return events;
    }
    static std::uint32_t nb_events(const clap_input_events* list) noexcept NONBLOCKING {
        return static_cast<std::uint32_t>(static_cast<const event_memory*>(list->ctx)->size());
    }
    static const clap_event_header* event_at(const clap_input_events* list,
                                             std::uint32_t index) noexcept NONBLOCKING {
        const auto& memory = (*static_cast<const event_memory*>(list->ctx))[index];
        return reinterpret_cast<const clap_event_header*>(memory.get());
    }
    static bool push(const clap_output_events* list,
                     const clap_event_header*) noexcept NONBLOCKING {
        return *static_cast<const bool*>(list->ctx);
    }

    clap_host host{clap_interface_version,
                   nullptr,
                   "fuzzer",
                   "",
                   "",
                   "1",
                   [](const clap_host*, const char*) -> const void* { return nullptr; },
                   {},
                   {},
                   {}};
    const clap_plugin* plugin;
    const clap_plugin_state* state;
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t nb_bytes) {
    FuzzedDataProvider data(p_bytes, nb_bytes);
    const hosted clap;
    while (data.remaining_bytes() > 0) {
        if (data.ConsumeBool()) {
            clap.process(data);
            continue;
        }
        const std::string before = clap.save();
        const auto nb_at_once = data.ConsumeIntegralInRange<std::size_t>(1, 2000);
        if (!clap.load(data.ConsumeRandomLengthString(), nb_at_once))
            require(clap.save() == before);
    }
    const std::string saved = clap.save();
    require(clap.load(saved, 100) && clap.save() == saved);
    return 0;
}
