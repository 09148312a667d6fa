#pragma once
/// What the user does on the panel, on its way to the host, who hears of it in a block or a flush.
/// One thread puts, one takes.

#include "clap/interface.h"
#include "realtime/nonblocking.h"

#include <array>
#include <atomic>
#include <cstddef>

struct clap_edit {
    clap_event_type type = CLAP_EVENT_PARAM_VALUE; ///< or a gesture's begin or end
    clap_id param_id = 0;
    double value = 0;
};

class clap_edit_queue {
public:
    /// Returns false where nobody has taken anything for long. [ui]
    bool put(const clap_edit& edit) noexcept {
        const std::size_t end = nb_put.load(std::memory_order_relaxed);
        if (end - nb_taken.load(std::memory_order_acquire) == edits.size())
            return false;
        edits[end % edits.size()] = edit;
        nb_put.store(end + 1, std::memory_order_release);
        return true;
    }

    /// Calls hear(edit) for each, until it returns false: that one stays. [audio]
    template <typename Hear>
    void take(Hear hear) noexcept NONBLOCKING {
        std::size_t first = nb_taken.load(std::memory_order_relaxed);
        for (; first != nb_put.load(std::memory_order_acquire); ++first)
            if (!hear(edits[first % edits.size()]))
                break;
        nb_taken.store(first, std::memory_order_release);
    }

private:
    std::array<clap_edit, 1024> edits{};
    std::atomic<std::size_t> nb_put = 0;
    std::atomic<std::size_t> nb_taken = 0;
};
