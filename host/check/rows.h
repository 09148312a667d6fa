#pragma once
/// What a plug-in is judged by: a list of rows for each subject.

#include "check/trial.h"

#include "plugin/plugin.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// Whether the interface demands what a row expects, or hosts merely dislike its lack: then its
/// failure, a crash too, is a warning.
enum class demand { interface, hosts };

struct row {
    std::string name; ///< subject/what is judged
    demand by;
    std::function<void(trial&)> judge;
    demand in_time = by;               ///< by whom it is demanded that the row comes to its end
    std::optional<plugin_format> of{}; ///< whose plug-ins it judges; all formats' if it is none
};

using table = std::vector<row>;

/// The rows, as rows of one format.
[[nodiscard]] table only(plugin_format format, table rows);

[[nodiscard]] table operator+(table first, const table& second); ///< one after the other

[[nodiscard]] table loading_rows();
[[nodiscard]] table record_rows();
[[nodiscard]] table text_rows();
[[nodiscard]] table opcode_rows();
[[nodiscard]] table state_rows();
[[nodiscard]] table set_up_rows();
[[nodiscard]] table block_rows();
[[nodiscard]] table event_rows();
[[nodiscard]] table parameter_rows();
[[nodiscard]] table sound_rows();
[[nodiscard]] table processor_rows();
[[nodiscard]] table instance_rows();
[[nodiscard]] table resource_rows();
[[nodiscard]] table audio_thread_rows(); ///< Linux
[[nodiscard]] table panel_rows();

[[nodiscard]] table clap_rows();
[[nodiscard]] table lv2_rows();

/// Loads and closes, and is none of the list.
constexpr const char* load_row = "load";

/// The row of that name; load_row if there is none.
[[nodiscard]] row row_of(const std::string& name);

/// In the order in which they are judged.
[[nodiscard]] table all_rows();
