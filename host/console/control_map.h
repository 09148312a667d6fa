#pragma once
/// Which controllers move which parameters.

#include "message/message.h"

#include <array>
#include <atomic>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// As in "7:1=Volume" or "-74=Contour".
struct control_mapping {
    int controller;             ///< 0 to 119
    std::optional<int> channel; ///< 1 to 16; none stands for all
    std::string parameter;
    bool is_reversed; ///< the highest value moves it to 0
};

/// CC[:channel]=Name, -CC for reversed. Throws a failure of misuse. [setup]
[[nodiscard]] control_mapping control_mapping_parse(const std::string& text);
[[nodiscard]] std::string control_mapping_text(const control_mapping& mapping); ///< [any]

/// A line each; none where there is no such file. Lines that are no mapping are told of and left
/// out. [setup]
[[nodiscard]] std::vector<control_mapping> control_map_read(const std::filesystem::path& file);

/// Replaces the file, and makes its folder. Returns whether that worked; if not, the reason is in
/// errno. [ui]
[[nodiscard]] bool control_map_write(const std::filesystem::path& file,
                                     const std::vector<control_mapping>& mappings);

/// A table for the audio thread, which others may read and change meanwhile.
class control_table {
public:
    struct target {
        int parameter;
        bool is_reversed;
    };

    void set(std::size_t channel, std::size_t controller, target moved) noexcept; ///< [any]
    /// Nothing if the controller moves nothing. [any]
    [[nodiscard]] std::optional<target> find(std::size_t channel,
                                             std::size_t controller) const noexcept;

    void set(const control_mapping& mapping, int parameter); ///< [setup]

private:
    // 0 for nothing, else the parameter's index plus 1, negative for reversed.
    std::array<std::array<std::atomic<std::int32_t>, nb_midi_values>, nb_midi_channels> entries_{};
};
