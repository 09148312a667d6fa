#pragma once
/// A CLAP instrument as the command's, and the host that the command is to it. Parameters may be
/// set on any thread while it runs.

#include "clap/interface.h"
#include "platform/library.h"
#include "plugin/clap_buffers.h"
#include "plugin/clap_editor.h"
#include "plugin/plugin.h"
#include "realtime/ring.h"

#include <algorithm>
#include <atomic>
#include <limits>

/// At a frame of the block; all else of it is zero.
template <typename Event>
Event clap_make_event(clap_event_type type, int frame) {
    Event made{};
    made.header = {.size = sizeof made,
                   .time = static_cast<std::uint32_t>(std::max(frame, 0)),
                   .space_id = CLAP_CORE_EVENT_SPACE_ID,
                   .type = type,
                   .flags = 0};
    return made;
}

class loaded_clap final : public plugin {
public:
    union event { ///< each begins with its header
        clap_event_header header;
        clap_event_param_value setting;
        clap_event_note note;
        clap_event_midi midi;
    };

    /// Takes the first plug-in of the library. Throws a failure that names the file and the reason.
    explicit loaded_clap(const std::filesystem::path& file,
                         library::in_the_end then = library::in_the_end::stays);
    ~loaded_clap() override;

    std::string name() override;
    std::string id() override;
    std::vector<plugin_fact> facts() override;

    [[nodiscard]] int nb_parameters() const override { return static_cast<int>(infos_.size()); }
    std::string parameter_name(int index) override;
    std::string parameter_text(int index) override;
    float parameter(int index) override;
    void set_parameter(int index, float value) override;

    [[nodiscard]] const clap_plugin& raw() const { return *plugin_; }
    [[nodiscard]] const clap_plugin_entry& entry() const { return *entry_; }

    /// Its extension of that name; null if it has none.
    template <typename Extension>
    const Extension* extension(const char* id) const {
        return static_cast<const Extension*>(plugin_->get_extension(plugin_, id));
    }

    std::optional<std::string> save() override;
    bool load(std::string_view state) override;

    /// Hands an event over with those of the next block, behind those of its frame.
    void send(const event& sent);

    /// The song's position from the next block on, in the caller's memory; null: none.
    void set_transport(const clap_event_transport* transport) { transport_ = transport; }

    [[nodiscard]] clap_process_status status() const { return status_; } ///< the last block's

    /// Streams hand out and take no more than so many bytes at once.
    void set_stream_piece(std::size_t nb_bytes) { stream_piece_ = nb_bytes; }

    [[nodiscard]] bool is_instrument() const override { return dialects_ != 0; }
    [[nodiscard]] int nb_outputs() const override { return outputs_.nb_channels(); }
    void send(event_list& events) override;
    using plugin::process;
    void process(channel_memory inputs, channel_memory outputs, int nb_frames) override;

    [[nodiscard]] bool has_editor() const override { return editor_.exists(); }
    editor_extent editor_size() override { return editor_.size(); }
    bool set_editor_scale(double scale) override { return editor_.set_scale(scale); }
    bool open_editor(void* window) override { return editor_.open(window); }
    void close_editor() override { editor_.close(); }
    void idle_editor() override;
    void set_listener(const std::function<void(const panel_edit&)>& listener) override {
        listener_ = listener;
    }

protected:
    void set_up() override {}
    void resume(host_activity for_what) override;
    void suspend() override;

private:
    static bool hear(const clap_output_events* told,
                     const clap_event_header* event) noexcept NONBLOCKING;

    void create();
    void find_ports();
    void send(message_view message, int frame);
    void take_settings();
    void hand_over_settings();
    [[nodiscard]] std::string value_text(clap_id id, double value) const;

    library library_;
    std::string path_;
    clap_host host_;
    const clap_plugin_entry* entry_ = nullptr;
    const clap_plugin* plugin_ = nullptr;
    const clap_plugin_params* params_ = nullptr;
    std::vector<clap_param_info> infos_{};
    std::vector<std::atomic<double>> settings_{}; ///< by parameter: on its way; NaN: none
    clap_buffers inputs_{}, outputs_{};           ///< the first output's is listened to
    std::uint32_t dialects_ = 0;                  ///< of the first note port
    std::vector<event> events_{};                 ///< of the next block
    const clap_event_transport* transport_ = nullptr;
    clap_process_status status_ = CLAP_PROCESS_CONTINUE;
    clap_editor editor_{};
    ring<panel_edit> edits_{}; ///< on their way from the block that told of them
    std::function<void(const panel_edit&)> listener_{};
    std::size_t stream_piece_ = std::numeric_limits<std::size_t>::max();
};
