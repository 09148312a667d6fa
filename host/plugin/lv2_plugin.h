#pragma once
/// An LV2 instrument as the command's, known by nothing but what its bundle says and its binary
/// interface. One thread at a time may use it; what the plug-in leaves to a worker is done at once,
/// within the block, and answered behind it. The editor may set parameters meanwhile.

#include "plugin/lilv_owned.h"
#include "plugin/lv2_editor.h"
#include "plugin/plugin.h"

#include <lv2/atom/atom.h>
#include <lv2/urid/urid.h>
#include <lv2/worker/worker.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <unordered_map>

class lv2_plugin final : public plugin {
public:
    /// Finds the first plug-in of the bundle that hears MIDI and makes sound. Throws a failure that
    /// names the folder and the reason.
    explicit lv2_plugin(const std::filesystem::path& bundle);
    ~lv2_plugin() override;

    std::string name() override;
    std::string id() override; ///< its URI
    std::vector<plugin_fact> facts() override;

    [[nodiscard]] int nb_parameters() const override;
    std::string parameter_name(int index) override;
    std::string parameter_text(int index) override;
    float parameter(int index) override;
    void set_parameter(int index, float value) override;

    [[nodiscard]] LilvWorld* world() const { return world_.get(); }
    [[nodiscard]] const LilvPlugin* described() const { return plugin_; }
    [[nodiscard]] const LilvInstance* instance() const { return instance_.get(); } ///< or null
    [[nodiscard]] LV2_URID_Map& map() { return map_; }

    std::optional<std::string> save() override; ///< as Turtle; only after prepare, as load
    bool load(std::string_view state) override;
    [[nodiscard]] std::filesystem::path library_file() const override;

    [[nodiscard]] int nb_inputs() const override { return static_cast<int>(inputs_.size()); }
    [[nodiscard]] int nb_outputs() const override { return static_cast<int>(outputs_.size()); }
    void send(event_list& events) override;
    using plugin::process;
    void process(channel_memory inputs, channel_memory outputs, int nb_frames) override;

    [[nodiscard]] bool has_editor() const override { return editor_.exists(); }
    editor_extent editor_size() override { return editor_.size(); }
    bool set_editor_scale(double scale) override {
        return editor_.set_scale(static_cast<float>(scale));
    }
    bool open_editor(void* window) override;
    void close_editor() override;
    void idle_editor() override;
    void set_listener(const std::function<void(const panel_edit&)>& listener) override {
        listener_ = listener;
    }

protected:
    /// Makes the plug-in anew, for its rate never changes; parameters stay where they are.
    void set_up() override;
    void resume(host_activity for_what) override;
    void suspend() override;

private:
    /// Its buffer is a control's value, a block of sound, or atoms, which are aligned to 8 bytes.
    /// An audio port is connected to each block's own memory.
    struct port {
        const LilvPort* described = nullptr;
        std::vector<float> values{};
        std::vector<std::uint64_t> atoms{};
        bool is_input = false;
        bool is_control = false;

        LV2_Atom_Sequence* events() { return reinterpret_cast<LV2_Atom_Sequence*>(atoms.data()); }
        /// A control's.
        [[nodiscard]] float value() {
            return std::atomic_ref{values[0]}.load(std::memory_order_relaxed);
        }
        void set_value(float value) {
            std::atomic_ref{values[0]}.store(value, std::memory_order_relaxed);
        }
        [[nodiscard]] std::uint32_t room() const; ///< bytes behind the sequence's own header
    };

    struct parameter_port {
        std::size_t number; ///< of the port
        float least, most;
    };

    [[nodiscard]] owned_node node(const char* uri) const;
    /// What a node says, as text; "" where there is none. Takes the node.
    static std::string text(LilvNode* said);
    LV2_URID number(const char* uri);    ///< from 1 on; plug-ins may ask on any thread
    const char* uri(LV2_URID number);    ///< null for one that was not given
    bool describe_ports();               ///< returns whether it is an instrument's
    float* value_of(const char* symbol); ///< a control port's; null if it has none such
    bool show_editor();                  ///< in its window
    void hear(panel_edit::step what, std::uint32_t number, float value);
    void empty_sequences();
    LV2_Worker_Status work(std::uint32_t size, const void* data);

    std::string folder_;
    owned_world world_{lilv_world_new()};
    const LilvPlugin* plugin_ = nullptr;
    std::mutex mutex_{};
    std::unordered_map<std::string, LV2_URID> numbers_{};
    const LV2_URID midi_event_, sequence_, chunk_; ///< numbers that every block wants
    LV2_URID_Map map_;
    LV2_URID_Unmap unmap_;
    LV2_Worker_Schedule schedule_;
    std::vector<port> ports_{};
    std::vector<parameter_port> parameters_{};
    std::vector<std::uint32_t> inputs_{}, outputs_{}; ///< which of the ports are of audio
    port* midi_input_ = nullptr;
    std::vector<std::vector<std::byte>> responses_{}; ///< the worker's, until the block ends
    const LV2_Worker_Interface* worker_ = nullptr;
    owned_instance instance_{};
    lv2_editor editor_{};
    void* window_ = nullptr; ///< that the editor is open in
    std::function<void(const panel_edit&)> listener_{};
};
