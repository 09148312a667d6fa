#pragma once
/// An LV2 instrument in this process, from its loading to its end, known by nothing but what its
/// bundle says and its binary interface. One thread at a time may use it.

#include <lilv/lilv.h>
#include <lv2/atom/atom.h>
#include <lv2/urid/urid.h>
#include <lv2/worker/worker.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

class lv2_instrument {
public:
    /// Finds the plug-in in the system's bundles (LV2_PATH replaces their folders), connects all
    /// its ports, controls at their defaults, and activates it. Throws a std::runtime_error that
    /// names the plug-in and the reason.
    lv2_instrument(const char* uri, double rate_hz, int frames_per_block);
    ~lv2_instrument();
    lv2_instrument(const lv2_instrument&) = delete;
    lv2_instrument& operator=(const lv2_instrument&) = delete;

    /// Adds a message to the next block's first frame; false where the block has no room for it.
    bool send(std::array<std::uint8_t, 3> message);

    /// Renders a block. What the plug-in wants done outside of it is done here, at once.
    void render_block();

    /// The last block of an audio output, of which there is at least one.
    [[nodiscard]] std::span<const float> output(std::size_t index) const {
        return ports[outputs[index]].values;
    }

private:
    struct free_by_lilv {
        void operator()(LilvWorld* p) const { lilv_world_free(p); }
        void operator()(LilvNode* p) const { lilv_node_free(p); }
        void operator()(LilvInstance* p) const { lilv_instance_free(p); }
    };
    template <typename Type>
    using lilv_owned = std::unique_ptr<Type, free_by_lilv>;

    /// Its buffer is a control's value, a block of audio, or atoms, which are aligned to 8 bytes.
    struct port {
        std::vector<float> values{};
        std::vector<std::uint64_t> atoms{};
        bool is_input = false;

        LV2_Atom_Sequence* events() { return reinterpret_cast<LV2_Atom_Sequence*>(atoms.data()); }
        [[nodiscard]] std::uint32_t room() const; ///< bytes behind the sequence's own header
    };

    [[nodiscard]] lilv_owned<LilvNode> node(const char* uri) const;
    LV2_URID number(const char* uri); ///< from 1 on; plug-ins may ask on any thread
    void instantiate(double rate_hz);
    void connect_port(std::uint32_t index, float value);
    void empty_sequences();
    LV2_Worker_Status work(std::uint32_t size, const void* data);

    std::int32_t block_frames;
    lilv_owned<LilvWorld> world{lilv_world_new()};
    const LilvPlugin* plugin = nullptr;
    std::mutex mutex{};
    std::unordered_map<std::string, LV2_URID> numbers{};
    const LV2_URID midi_event, sequence, chunk; ///< numbers that every block wants
    LV2_URID_Map map;
    LV2_Worker_Schedule schedule;
    std::vector<port> ports{};
    std::vector<std::size_t> outputs{}; ///< which of the ports
    port* midi_input = nullptr;
    std::vector<std::vector<std::byte>> responses{}; ///< the worker's, until the block ends
    const LV2_Worker_Interface* worker = nullptr;
    lilv_owned<LilvInstance> instance{};
};
