#pragma once
/// A row of the suite while it runs: what it works on and how far it has come, which is what the
/// line of a failure says.

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

struct trial {
    std::filesystem::path plugin_file{};
    std::filesystem::path sounds_file{}; ///< of the reference
    std::string doing{};                 ///< what of the row is under way
    unsigned seed = 1; ///< of the instruments that it creates and of the row's own choices
    int rate = 0;      ///< Hz, of the instrument in use
    int block = 0;     ///< frames, of the latest block
    long frame = 0;    ///< since the instrument's first; of the block's start unless told better

    /// Throws a std::runtime_error that says all this and `what` unless it holds.
    void expect(bool holds, const std::string& what) const;

    /// Gives the seed to what is created next, which reads it at once.
    void plant_seed() const;
};

/// Every suite's fixture.
struct Row : testing::Test {
    static inline trial begun{}; ///< as the command line has it
    trial running = begun;
};
