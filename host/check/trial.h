#pragma once
/// A row while it is judged. Functions are [setup]; `at` is [any].

#include "check/report.h"

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>

/// Ends a row.
struct row_end : std::runtime_error {
    row_end(verdict its_result, const std::string& what)
        : std::runtime_error{what}, result{its_result} {}

    verdict result;
};

class trial {
public:
    const std::filesystem::path file;
    const std::uint32_t seed;

    trial(std::filesystem::path plugin_file, std::uint32_t its_seed, report& shared)
        : file{std::move(plugin_file)}, seed{its_seed}, report_{shared} {}

    void at(int rate, int block) {
        report_.rate = rate;
        report_.block = block;
        report_.frame = no_frame;
    }
    void at_frame(long frame) { report_.frame = frame; }

    /// What is tried from now on; "" for nothing worth telling.
    void doing(const std::string& what) { report_write(report_.doing, what); }

    void expect(bool holds, const std::string& what) const; ///< else the row has failed
    void prefer(bool holds, const std::string& what);       ///< else it ends with a warning
    [[noreturn]] void skip(const std::string& why) const;

    [[nodiscard]] const std::string& warnings() const { return warnings_; }

private:
    report& report_;
    std::string warnings_{};
};
