#include "live/status_line.h"

#include "failure/printable.h"
#include "platform/streams.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

namespace {

constexpr int nb_cells = 6;
constexpr float lowest_db = -48;
constexpr float fall = 0.9f; // of a peak's level, from one drawing to the next
constexpr std::size_t shortest_name = 3;
constexpr std::chrono::seconds between_counts{5};

std::string bar(float peak) {
    const float db = 20 * std::log10(std::max(peak, 1e-6f));
    const auto nb_full =
        std::clamp(static_cast<int>(std::lround((1 - db / lowest_db) * nb_cells)), 0, nb_cells);
    std::string cells(static_cast<std::size_t>(nb_full), '#');
    cells.resize(nb_cells, '.');
    return cells;
}

template <typename... Values>
std::string formatted(const char* p_format, Values... values) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), p_format, values...);
    return text.data();
}

/// Its beginning of at most so many bytes, none of a character that is cut.
std::string_view clipped(std::string_view name, std::size_t nb_bytes) {
    const auto goes_on = [name](std::size_t i) { return (name[i] & 0xC0) == 0x80; };
    nb_bytes = std::min(nb_bytes, name.size());
    while (nb_bytes > 0 && nb_bytes < name.size() && goes_on(nb_bytes))
        --nb_bytes;
    return name.substr(0, nb_bytes);
}

} // namespace

std::string status_text(const sound_status& status, const live_levels& levels, bool has_clipped,
                        std::size_t nb_columns) {
    const std::string system = status.system, device = printable(status.device);
    const std::size_t room = nb_columns - std::min(nb_columns, system.size());
    std::string fields;
    for (const std::string& field :
         {formatted("%g kHz/%d", status.rate_hz / 1000.0, status.block_frames),
          formatted("%.1f ms", status.delay_ms), formatted("%ld xruns", status.nb_underruns),
          formatted("CPU %2.0f %%", 100 * status.load), formatted("%2d keys", levels.nb_held),
          "[" + bar(levels.peaks[0]) + "|" + bar(levels.peaks[1]) + "]"
              + (has_clipped ? " CLIP" : "     ")})
        if (fields.size() + 1 + field.size() <= room)
            fields += " " + field;
    const std::size_t rest = room - fields.size();
    if (device.empty() || rest <= shortest_name)
        return system + fields;
    return system + " " + std::string{clipped(device, rest - 1)} + fields;
}

status_line::status_line(std::FILE* p_output)
    : p_output_{p_output}, is_live_{p_output && is_terminal(p_output)} {}

status_line::~status_line() {
    if (is_live_ && !line_.empty())
        std::fputs("\n", p_output_);
}

void status_line::show(const sound_status& status, const live_levels& levels) {
    if (!is_live_)
        return count(status.nb_underruns);
    for (std::size_t i = 0; i < peaks_.size(); ++i)
        peaks_[i] = std::max(levels.peaks[i], peaks_[i] * fall);
    has_clipped_ |= *std::ranges::max_element(levels.peaks) > 1;
    // The last column stays free, where some terminals would begin another line.
    const auto nb_columns = static_cast<std::size_t>(terminal_columns(p_output_)) - 1;
    draw(status_text(status, {peaks_, levels.nb_held}, has_clipped_, nb_columns));
}

void status_line::show_absence() { draw("looking for the sound ..."); }

void status_line::tell(const std::string& news) {
    if (!p_output_)
        return;
    if (is_live_)
        std::fprintf(p_output_, "\r\x1B[K");
    std::fprintf(p_output_, "%s\n", printable(news).c_str());
    std::fflush(p_output_);
    draw(std::exchange(line_, {}));
}

/// Another sound's count begins anew.
void status_line::count(long nb_underruns) {
    const auto now = std::chrono::steady_clock::now();
    if (nb_underruns > nb_counted_ && now - last_count_ < between_counts)
        return;
    if (nb_underruns > nb_counted_) {
        tell("xruns so far: " + std::to_string(nb_underruns));
        last_count_ = now;
    }
    nb_counted_ = nb_underruns;
}

void status_line::draw(const std::string& line) {
    if (!is_live_ || line == line_)
        return;
    line_ = line;
    std::fprintf(p_output_, "\r%s\x1B[K", line_.c_str());
    std::fflush(p_output_);
}
