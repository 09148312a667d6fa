#include "report/report.h"

#include "failure/printable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace {

std::string duration_text(double seconds) {
    const auto tenths = std::llround(seconds * 10);
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%lld:%02lld.%lld", tenths / 600, tenths / 10 % 60,
                  tenths % 10);
    return text.data();
}

std::string count_text(std::uint64_t number, const std::string& thing) {
    return std::to_string(number) + " " + thing + (number == 1 ? "" : "s");
}

std::string channels_line(const render_report& report) {
    if (report.music.nb_unwished == 0)
        return {};
    return count_text(report.music.nb_unwished, "note")
           + (report.chooses_channels ? " on channels not asked for\n"
                                      : " on channel 10 left out; --channels all plays them\n");
}

std::string keyboard_line(const render_report& report) {
    const auto count_outside = [&](int transposition) {
        return keyboard_count_outside(report.keys, report.music, transposition);
    };
    const auto nb_outside = count_outside(report.transposition);
    if (nb_outside == 0)
        return {};
    std::string line = count_text(nb_outside, "note") + " outside the keyboard (MIDI notes "
                       + std::to_string(report.keys.lowest) + " to "
                       + std::to_string(report.keys.highest) + ")";
    const int best = keyboard_best_transposition(report.keys, report.music);
    if (count_outside(best) < nb_outside)
        line += "; --transpose " + std::to_string(best) + " would leave "
                + std::to_string(count_outside(best));
    return line + "\n";
}

std::string level_line(const render_report& report) {
    const meter& levels = report.levels;
    if (levels.peak == 0)
        return "silence throughout\n";
    const std::string over = report.clips
                                 ? count_text(levels.nb_over, "clipped sample")
                                 : count_text(levels.nb_over, "sample") + " that would clip";
    return "peak " + level_text(levels.peak) + ", RMS " + level_text(meter_rms(levels)) + ", "
           + over + "\n";
}

} // namespace

std::string report_text(const render_report& report) {
    const auto nb_played = keyboard_count_played(report.keys, report.music, report.transposition);
    std::string text = printable(report.output_name) + ": " + duration_text(report.seconds) + ", "
                       + count_text(nb_played, "note") + " played\n" + channels_line(report)
                       + keyboard_line(report) + level_line(report);
    if (report.nb_outputs > 2)
        text += "the first 2 of the instrument's " + std::to_string(report.nb_outputs)
                + " outputs are in the file\n";
    if (report.levels.nb_invalid > 0)
        text += count_text(report.levels.nb_invalid, "sample")
                + " from the instrument were no numbers and became silence\n";
    const double speed = report.seconds / std::max(report.elapsed_seconds, 1e-6);
    std::array<char, 64> line{};
    std::snprintf(line.data(), line.size(), "%.*f times faster than real time\n",
                  speed < 9.95 ? 1 : 0, speed); // 9.95 and more would read 10.0
    return text + line.data();
}
