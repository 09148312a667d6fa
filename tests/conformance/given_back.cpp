#include "conformance/given_back.h"

#include "conformance/platform.h"

#include <string>

namespace {

constexpr std::size_t slack_bytes = 4096;
constexpr int nb_chances = 3;

std::string amounts(const resources& used) {
    return std::to_string(used.nb_bytes) + " bytes, " + std::to_string(used.nb_threads)
           + " threads, " + std::to_string(used.nb_handles) + " handles, "
           + std::to_string(used.nb_slots) + " slots, " + std::to_string(used.nb_windows)
           + " windows";
}

bool is_given_back(const resources& before, const resources& after) {
    return after.nb_bytes <= before.nb_bytes + slack_bytes && after.nb_threads <= before.nb_threads
           && after.nb_handles <= before.nb_handles && after.nb_slots <= before.nb_slots
           && after.nb_windows <= before.nb_windows;
}

} // namespace

void expect_given_back(const trial& running, const std::function<void()>& play_rounds) {
    play_rounds();
    resources before{}, after{};
    for (int i = 0; i < nb_chances; ++i) {
        before = resources_in_use();
        play_rounds();
        after = resources_in_use();
        if (is_given_back(before, after))
            return;
    }
    running.expect(false, "in use before: " + amounts(before) + "; after: " + amounts(after));
}
