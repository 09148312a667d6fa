/// What a plug-in takes from the system it gives back.

#include "check/rows.h"
#include "check/subject.h"
#include "platform/library.h"
#include "platform/process.h"
#include "probe/lost_resources.h"

namespace {

constexpr int nb_rounds = 40;

void live_and_die(trial& running) {
    subject played(running, usual_rate, usual_block);
    if (!played.tested().why_silent().empty())
        return;
    if (played.tested().is_instrument())
        played.strike(middle_note);
    played.play_long(4L * usual_block);
}

void expect_no_loss(const trial& running, const std::function<void()>& round,
                    const char* remark = "") {
    const std::string lost = lost_resources([&] {
        for (int i = 0; i < nb_rounds; ++i)
            round();
    });
    running.expect(lost.empty(),
                   "over " + std::to_string(nb_rounds) + " rounds it loses " + lost + remark);
}

/// The library stays, so that what its static parts hold is no loss.
void opened_and_closed(trial& running) {
    const subject kept(running, usual_rate, usual_block);
    expect_no_loss(running, [&] { live_and_die(running); });
}

void loaded_and_unloaded(trial& running) {
    std::filesystem::path file;
    {
        const subject once(running, usual_rate, usual_block);
        file = once.tested().library_file();
    }
    if (library_is_loaded(file))
        running.skip("its library stays in memory once it is loaded");
    expect_no_loss(
        running, [&] { live_and_die(running); },
        "; a C++ runtime that is linked into it leaves some 72 KB each time");
}

void set_up_anew(trial& running) {
    subject played(running, usual_rate, usual_block);
    expect_no_loss(running, [&] {
        played.prepare(44100, 1024);
        played.prepare(usual_rate, usual_block);
    });
}

} // namespace

table resource_rows() {
    // Many rounds of what takes some plug-ins seconds: what hangs, hangs in other rows, too.
    return {{"resources/opened and closed", demand::interface, opened_and_closed, demand::hosts},
            {"resources/loaded and unloaded", demand::hosts, loaded_and_unloaded},
            {"resources/set up anew", demand::interface, set_up_anew, demand::hosts}};
}
