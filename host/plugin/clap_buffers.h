#pragma once
/// The buffers of a CLAP plug-in's audio ports of one direction: it counts on one for each port.
/// Functions are [setup] unless tagged.

#include "clap/interface.h"
#include "plugin/plugin.h"

#include <cstdint>
#include <vector>

class clap_buffers {
public:
    void attach(const clap_plugin* plugin, bool is_input);

    [[nodiscard]] int nb_channels() const; ///< of the first port; 0 where there is none

    void make_room(int nb_frames); ///< silent

    /// Takes the caller's memory for the first port, until there is room made again. [audio]
    void connect(channel_memory first);

    [[nodiscard]] clap_audio_buffer* records() { return buffers_.data(); } ///< [audio], as the next
    [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(buffers_.size()); }

private:
    std::vector<clap_audio_buffer> buffers_{};
    std::vector<std::vector<float>> memory_{}; ///< by channel, of all ports, as the next
    std::vector<float*> channels_{};
};
