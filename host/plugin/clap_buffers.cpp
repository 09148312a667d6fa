#include "plugin/clap_buffers.h"

#include <algorithm>

namespace {

constexpr std::uint32_t max_ports = 256; // a count of more is none, here and below
constexpr std::uint32_t max_channels = 256;

} // namespace

void clap_buffers::attach(const clap_plugin* plugin, bool is_input) {
    const auto* ports = static_cast<const clap_plugin_audio_ports*>(
        plugin->get_extension(plugin, clap_audio_ports_id));
    const std::uint32_t nb_ports = ports ? std::min(ports->count(plugin, is_input), max_ports) : 0;
    for (std::uint32_t i = 0; i < nb_ports; ++i) {
        clap_audio_port_info info{};
        ports->get(plugin, i, is_input, &info);
        buffers_.push_back({nullptr, nullptr, std::min(info.channel_count, max_channels), 0, 0});
    }
}

int clap_buffers::nb_channels() const {
    return buffers_.empty() ? 0 : static_cast<int>(buffers_.front().channel_count);
}

void clap_buffers::make_room(int nb_frames) {
    std::size_t nb_channels = 0;
    for (const clap_audio_buffer& buffer : buffers_)
        nb_channels += buffer.channel_count;
    memory_.assign(nb_channels, std::vector<float>(static_cast<std::size_t>(nb_frames)));
    channels_.clear();
    for (auto& channel : memory_)
        channels_.push_back(channel.data());
    float** next = channels_.data();
    for (clap_audio_buffer& buffer : buffers_) {
        buffer.data32 = next;
        next += buffer.channel_count;
    }
}

void clap_buffers::connect(channel_memory first) {
    if (!buffers_.empty())
        buffers_.front().data32 = const_cast<float**>(first.data());
}
