#include "live/status_line.h"

#include "failure/printable.h"
#include "platform/streams.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int nb_cells = 8;
constexpr float lowest_db = -48;
constexpr float fall = 0.9f; // of a peak's level, from one drawing to the next

std::string bar(float peak) {
    const float db = 20 * std::log10(std::max(peak, 1e-6f));
    const auto nb_full =
        std::clamp(static_cast<int>(std::lround((1 - db / lowest_db) * nb_cells)), 0, nb_cells);
    std::string cells(static_cast<std::size_t>(nb_full), '#');
    cells.resize(nb_cells, '.');
    return cells;
}

} // namespace

std::string status_text(const sound_status& status, const live_levels& levels, bool has_clipped) {
    std::array<char, 128> text{};
    const int nb =
        std::snprintf(text.data(), text.size(),
                      "%s %d Hz/%d, %.1f ms, CPU %2.0f %%  [%s|%s] %s  %d keys, %ld xruns",
                      status.system, status.rate_hz, status.block_frames, status.delay_ms,
                      100 * status.load, bar(levels.peaks[0]).c_str(), bar(levels.peaks[1]).c_str(),
                      has_clipped ? "CLIP" : "    ", levels.nb_held, status.nb_underruns);
    return {text.data(), std::min(static_cast<std::size_t>(nb), std::size_t{79})};
}

status_line::status_line(std::FILE* p_output)
    : p_output_{p_output}, is_live_{p_output && is_terminal(p_output)} {}

status_line::~status_line() {
    if (is_live_ && !line_.empty())
        std::fputs("\n", p_output_);
}

void status_line::show(const sound_status& status, const live_levels& levels) {
    for (std::size_t i = 0; i < peaks_.size(); ++i)
        peaks_[i] = std::max(levels.peaks[i], peaks_[i] * fall);
    has_clipped_ |= *std::ranges::max_element(levels.peaks) > 1;
    draw(status_text(status, {peaks_, levels.nb_held}, has_clipped_));
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

void status_line::draw(const std::string& line) {
    if (!is_live_ || line == line_)
        return;
    line_ = line;
    std::fprintf(p_output_, "\r%s\x1B[K", line_.c_str());
    std::fflush(p_output_);
}
