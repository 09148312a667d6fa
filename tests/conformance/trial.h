#pragma once
/// A row of the suite while it runs: what it works on and how far it has come, which is what the
/// line of a failure says.

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// What does not hold. Thrown out of the row.
struct mismatch {
    std::string what;
};

struct trial {
    std::filesystem::path plugin_file;
    std::string doing{}; ///< what of the row is under way
    unsigned seed = 1;   ///< of the instruments that it creates and of the row's own choices
    int rate = 0;        ///< Hz, of the instrument in use
    int block = 0;       ///< frames, of the latest block
    long frame = 0;      ///< since the instrument's first; of the block's start unless told better

    /// Throws a mismatch unless it holds.
    void expect(bool holds, const std::string& what) const;
};

/// "rate 48000, block 64, frame 128, seed 1, a dump of 5 bytes: ".
[[nodiscard]] std::string trial_text(const trial& current);

struct row {
    std::string name; ///< "group/name"
    std::function<void(trial&)> judge;
};

using table = std::vector<row>;
