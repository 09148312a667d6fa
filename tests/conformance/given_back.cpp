#include "conformance/given_back.h"

#include <string>

namespace {

constexpr std::size_t slack_bytes = 4096;

std::string amounts(const resources& used) {
    return std::to_string(used.nb_bytes) + " bytes, " + std::to_string(used.nb_threads)
           + " threads, " + std::to_string(used.nb_handles) + " handles, "
           + std::to_string(used.nb_slots) + " slots, " + std::to_string(used.nb_windows)
           + " windows";
}

} // namespace

void expect_given_back(const trial& running, const resources& before) {
    const resources after = resources_in_use();
    running.expect(after.nb_bytes <= before.nb_bytes + slack_bytes
                       && after.nb_threads <= before.nb_threads
                       && after.nb_handles <= before.nb_handles && after.nb_slots <= before.nb_slots
                       && after.nb_windows <= before.nb_windows,
                   "in use before: " + amounts(before) + "; after: " + amounts(after));
}
