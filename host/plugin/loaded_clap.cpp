#include "plugin/loaded_clap.h"

#include "failure/printable.h"
#include "plugin/clap_stream.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>
#include <utility>

namespace {

constexpr double no_setting = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t nb_events_of_a_block = 4096; // more take memory
constexpr std::uint32_t max_parameters = 65536;    // a count of more is none

/// From 0 to 1.
float share(const clap_param_info& info, double value) noexcept NONBLOCKING {
    const double range = info.max_value - info.min_value;
    return range > 0 ? static_cast<float>((value - info.min_value) / range) : 0.0f;
}

const clap_host_params host_params{
    .rescan = [](const clap_host*, clap_param_rescan_flags) {},
    .clear = [](const clap_host*, clap_id, clap_param_clear_flags) {},
    .request_flush = [](const clap_host*) {}};

const void* host_extension(const clap_host*, const char* id) {
    const std::string_view asked = id;
    if (asked == clap_timer_support_id)
        return &clap_editor::timer_support;
    return asked == clap_params_id ? &host_params : nullptr;
}

void ignore(const clap_host*) {}

} // namespace

loaded_clap::loaded_clap(const std::filesystem::path& file, library::in_the_end then)
    : plugin{file},
      library_{file, then},
      path_{std::filesystem::absolute(file).string()},
      host_{.clap_version = clap_interface_version,
            .host_data = &editor_,
            .name = "Tindelwax command",
            .vendor = "Quenmar",
            .url = "",
            .version = "1",
            .get_extension = host_extension,
            .request_restart = ignore,
            .request_process = ignore,
            .request_callback = clap_editor::request_callback},
      entry_{static_cast<const clap_plugin_entry*>(library_.find("clap_entry"))} {
    if (!entry_)
        throw failure{exit_misused,
                      file.string() + " is no CLAP plug-in for this system: "
                          + (library_.error.empty() ? "it exports no clap_entry" : library_.error)};
    if (!entry_->init(path_.c_str()))
        fail("refuses to start");
    create();
    if (!plugin_) {
        entry_->deinit();
        fail("refuses to make a plug-in");
    }
    find_ports();
    const std::uint32_t nb_parameters =
        params_ ? std::min(params_->count(plugin_), max_parameters) : 0;
    infos_.resize(nb_parameters);
    settings_ = std::vector<std::atomic<double>>(nb_parameters);
    for (std::uint32_t i = 0; i < nb_parameters; ++i) {
        params_->get_info(plugin_, i, &infos_[i]);
        settings_[i] = no_setting;
    }
    editor_.attach(plugin_);
}

loaded_clap::~loaded_clap() {
    stop();
    editor_.close();
    plugin_->destroy(plugin_);
    entry_->deinit();
}

void loaded_clap::create() {
    const auto* factory =
        static_cast<const clap_plugin_factory*>(entry_->get_factory(clap_plugin_factory_id));
    const auto* described = factory && factory->get_plugin_count(factory) > 0
                                ? factory->get_plugin_descriptor(factory, 0)
                                : nullptr;
    plugin_ = described ? factory->create_plugin(factory, &host_, described->id) : nullptr;
    if (plugin_ && !plugin_->init(plugin_)) {
        plugin_->destroy(plugin_);
        plugin_ = nullptr;
    }
}

void loaded_clap::find_ports() {
    params_ = extension<clap_plugin_params>(clap_params_id);
    inputs_.attach(plugin_, true);
    outputs_.attach(plugin_, false);
    clap_note_port_info notes{};
    const auto* note_ports = extension<clap_plugin_note_ports>(clap_note_ports_id);
    if (note_ports && note_ports->count(plugin_, true) > 0
        && note_ports->get(plugin_, 0, true, &notes))
        dialects_ = notes.supported_dialects;
}

std::string loaded_clap::name() { return printable(plugin_->desc->name); }

std::string loaded_clap::id() { return printable(plugin_->desc->id); }

std::vector<plugin_fact> loaded_clap::facts() {
    const auto said = [](const char* text) { return text ? printable(text) : ""; };
    std::string features;
    for (const char* const* feature = plugin_->desc->features; feature && *feature; ++feature)
        features += (features.empty() ? "" : ", ") + said(*feature);
    const auto& version = plugin_->desc->clap_version;
    return {{"vendor", said(plugin_->desc->vendor)},
            {"version", said(plugin_->desc->version) + "; interface "
                            + std::to_string(version.major) + "." + std::to_string(version.minor)
                            + "." + std::to_string(version.revision)},
            {"id", id()},
            {"category", features},
            {"channels", std::to_string(nb_outputs()) + " out"},
            {"parameters", std::to_string(nb_parameters())}};
}

std::string loaded_clap::parameter_name(int index) {
    return printable(infos_[static_cast<std::size_t>(index)].name);
}

std::string loaded_clap::value_text(clap_id id, double value) const {
    std::array<char, CLAP_NAME_SIZE> text{};
    params_->value_to_text(plugin_, id, value, text.data(), text.size());
    text.back() = 0;
    return printable(text.data());
}

std::string loaded_clap::parameter_text(int index) {
    const clap_id id = infos_[static_cast<std::size_t>(index)].id;
    double value = 0;
    params_->get_value(plugin_, id, &value);
    return value_text(id, value);
}

float loaded_clap::parameter(int index) {
    const clap_param_info& info = infos_[static_cast<std::size_t>(index)];
    double value = settings_[static_cast<std::size_t>(index)].load(std::memory_order_relaxed);
    if (std::isnan(value))
        params_->get_value(plugin_, info.id, &value);
    return share(info, value);
}

void loaded_clap::set_parameter(int index, float value) {
    const clap_param_info& info = infos_[static_cast<std::size_t>(index)];
    double plain = info.min_value + static_cast<double>(value) * (info.max_value - info.min_value);
    if (info.flags & CLAP_PARAM_IS_STEPPED)
        plain = std::round(plain);
    settings_[static_cast<std::size_t>(index)].store(plain, std::memory_order_relaxed);
    if (!runs())
        hand_over_settings();
}

/// What was set comes before all else in the block.
void loaded_clap::take_settings() {
    for (std::size_t i = 0; i < settings_.size(); ++i) {
        const double value = settings_[i].exchange(no_setting, std::memory_order_relaxed);
        if (std::isnan(value))
            continue;
        auto setting = clap_make_event<clap_event_param_value>(CLAP_EVENT_PARAM_VALUE, 0);
        setting.param_id = infos_[i].id;
        setting.cookie = infos_[i].cookie;
        setting.note_id = setting.port_index = setting.channel = setting.key = -1;
        setting.value = value;
        events_.insert(events_.begin(), {.setting = setting});
    }
}

namespace {

/// A block's events as the interface lists them.
template <typename Events>
clap_input_events list_of(const Events& events) {
    return {.ctx = const_cast<Events*>(&events),
            .size =
                [](const clap_input_events* list) noexcept NONBLOCKING {
                    return static_cast<std::uint32_t>(
                        static_cast<const Events*>(list->ctx)->size());
                },
            .get =
                [](const clap_input_events* list, std::uint32_t index) noexcept NONBLOCKING {
                    return &(*static_cast<const Events*>(list->ctx))[index].header;
                }};
}

} // namespace

/// While it does not run. Messages of a block to come stay where they are.
void loaded_clap::hand_over_settings() {
    if (!params_)
        return;
    std::vector<event> waiting = std::exchange(events_, {});
    take_settings();
    const clap_input_events in = list_of(events_);
    const clap_output_events out{.ctx = this, .try_push = hear};
    params_->flush(plugin_, &in, &out);
    events_ = std::move(waiting);
}

std::optional<std::string> loaded_clap::save() {
    const auto* state = extension<clap_plugin_state>(clap_state_id);
    if (!state)
        return {};
    clap_stream saved{.piece = stream_piece_};
    const clap_ostream out = saved.output();
    if (!state->save(plugin_, &out))
        fail("refuses to save its state");
    return saved.bytes;
}

bool loaded_clap::load(std::string_view state) {
    const auto* saving = extension<clap_plugin_state>(clap_state_id);
    clap_stream loaded{.bytes = std::string{state}, .piece = stream_piece_};
    const clap_istream in = loaded.input();
    return saving && saving->load(plugin_, &in);
}

void loaded_clap::resume(host_activity) {
    events_.reserve(nb_events_of_a_block);
    inputs_.make_room(block_frames_);
    outputs_.make_room(block_frames_);
    if (!plugin_->activate(plugin_, rate_hz_, 1, static_cast<std::uint32_t>(block_frames_)))
        fail("refuses a rate of " + std::to_string(rate_hz_) + " Hz");
    if (plugin_->start_processing(plugin_))
        return;
    plugin_->deactivate(plugin_);
    fail("refuses to process");
}

void loaded_clap::suspend() {
    plugin_->stop_processing(plugin_);
    plugin_->deactivate(plugin_);
}

/// What a controller has moved, which hosts do not record, is nobody's edit.
bool loaded_clap::hear(const clap_output_events* told, const clap_event_header* event) noexcept {
    auto& self = *static_cast<loaded_clap*>(told->ctx);
    if (event->space_id != CLAP_CORE_EVENT_SPACE_ID || event->flags & CLAP_EVENT_DONT_RECORD)
        return true;
    const auto put = [&self](panel_edit::step what, clap_id id, double value) noexcept NONBLOCKING {
        for (std::size_t i = 0; i < self.infos_.size(); ++i)
            if (self.infos_[i].id == id)
                self.edits_.put({what, static_cast<int>(i), share(self.infos_[i], value)});
    };
    if (event->type == CLAP_EVENT_PARAM_VALUE) {
        const auto& moved = reinterpret_cast<const clap_event_param_value&>(*event);
        put(panel_edit::step::sets, moved.param_id, moved.value);
    } else if (event->type == CLAP_EVENT_PARAM_GESTURE_BEGIN
               || event->type == CLAP_EVENT_PARAM_GESTURE_END) {
        const auto& gesture = reinterpret_cast<const clap_event_param_gesture&>(*event);
        put(event->type == CLAP_EVENT_PARAM_GESTURE_BEGIN ? panel_edit::step::begins
                                                          : panel_edit::step::ends,
            gesture.param_id, 0);
    }
    return true;
}

/// While no block is played, nobody else takes what the panel tells.
void loaded_clap::idle_editor() {
    editor_.idle();
    if (!runs())
        hand_over_settings();
    for (; const panel_edit* const edit = edits_.first(); edits_.drop_first())
        if (listener_)
            listener_(*edit);
}

void loaded_clap::send(event_list& events) {
    events.for_each_message([this](message_view message, int frame) { send(message, frame); });
}

void loaded_clap::send(const event& sent) {
    const auto time = [](const event& each) { return each.header.time; };
    events_.insert(std::ranges::upper_bound(events_, sent.header.time, {}, time), sent);
}

/// Notes as the interface's own where they are understood. What is not is left out.
void loaded_clap::send(message_view message, int frame) {
    if (message.size() > 3)
        return;
    const bool is_stroke = message_is_stroke(message);
    if (dialects_ & CLAP_NOTE_DIALECT_CLAP && (is_stroke || message_is_release(message))) {
        auto note = clap_make_event<clap_event_note>(
            is_stroke ? CLAP_EVENT_NOTE_ON : CLAP_EVENT_NOTE_OFF, frame);
        note.note_id = -1;
        note.channel = static_cast<std::int16_t>(message_channel(message));
        note.key = message[1];
        note.velocity = message[2] / 127.0;
        send({.note = note});
    } else if (dialects_ & CLAP_NOTE_DIALECT_MIDI) {
        auto midi = clap_make_event<clap_event_midi>(CLAP_EVENT_MIDI, frame);
        std::ranges::copy(message, midi.data);
        send({.midi = midi});
    }
}

void loaded_clap::process(channel_memory, channel_memory outputs, int nb_frames) {
    take_settings();
    const clap_input_events in = list_of(events_);
    const clap_output_events out{.ctx = this, .try_push = hear};
    outputs_.connect(outputs);
    const clap_process block{.steady_time = -1,
                             .frames_count = static_cast<std::uint32_t>(nb_frames),
                             .transport = transport_,
                             .audio_inputs = inputs_.records(),
                             .audio_outputs = outputs_.records(),
                             .audio_inputs_count = inputs_.size(),
                             .audio_outputs_count = outputs_.size(),
                             .in_events = &in,
                             .out_events = &out};
    status_ = plugin_->process(plugin_, &block);
    if (status_ == CLAP_PROCESS_ERROR)
        for (float* const channel : outputs)
            std::fill_n(channel, nb_frames, 0.0f);
    events_.clear();
}
