#include "clap/state.h"

#include "clap/parameters.h"
#include "clap/plugin.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace {

/// A hundred times what a state takes: whatever is longer is none.
constexpr std::size_t longest_state = 1 << 16;

bool save(const clap_plugin* plugin, const clap_ostream* stream) {
    const std::string text = clap_instrument_of(plugin).played.save();
    for (std::string_view rest = text; !rest.empty();) {
        const std::int64_t nb_written = stream->write(stream, rest.data(), rest.size());
        if (nb_written <= 0)
            return false;
        rest.remove_prefix(std::min(static_cast<std::size_t>(nb_written), rest.size()));
    }
    return true;
}

bool load(const clap_plugin* plugin, const clap_istream* stream) {
    clap_instrument& self = clap_instrument_of(plugin);
    std::string text;
    std::array<char, 1024> piece;
    std::int64_t nb_read = 0;
    while ((nb_read = stream->read(stream, piece.data(), piece.size())) > 0) {
        text.append(piece.data(), std::min(static_cast<std::size_t>(nb_read), piece.size()));
        if (text.size() > longest_state)
            return false;
    }
    if (nb_read < 0 || !self.played.load(text))
        return false;
    clap_tell_of_values(self.p_host);
    return true;
}

} // namespace

const clap_plugin_state clap_state{save, load};
