#include "probe/lost_resources.h"

#include "platform/resources.h"

namespace {

constexpr int nb_chances = 8; // libraries that read data settle slowly

struct loss {
    long long amount;
    long long slack; ///< that is none
    const char* what;
};

template <typename Number>
long long growth(Number before, Number after) {
    return static_cast<long long>(after) - static_cast<long long>(before);
}

std::string difference(const resources& before, const resources& after) {
    const loss losses[]{
        {growth(before.nb_bytes, after.nb_bytes), 4096, " bytes"},
        {growth(before.nb_mapped_bytes, after.nb_mapped_bytes), 65536, " mapped bytes"},
        {growth(before.nb_threads, after.nb_threads), 0, " threads"},
        {growth(before.nb_handles, after.nb_handles), 0, " files or handles"},
        {growth(before.nb_slots, after.nb_slots), 0, " thread-local slots"},
        {growth(before.nb_windows, after.nb_windows), 0, " windows or drawing objects"}};
    std::string text;
    for (const loss& each : losses)
        if (each.amount > each.slack)
            text += (text.empty() ? "" : ", ") + std::to_string(each.amount) + each.what;
    return text;
}

} // namespace

std::string lost_resources(const std::function<void()>& play_rounds) {
    play_rounds();
    std::string lost;
    for (int i = 0; i < nb_chances; ++i) {
        const resources before = resources_in_use();
        play_rounds();
        lost = difference(before, resources_in_use());
        if (lost.empty())
            break;
    }
    return lost;
}
