/// What the audio thread must not do: wait for memory, locks, files or anything else that takes no
/// time most of the time.

#include "check/panel_shown.h"
#include "check/rows.h"
#include "check/watched_calls.h"

#include <csignal>
#include <cstring>
#include <linux/seccomp.h>
#include <new>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int nb_blocks = 400;

constexpr const char* complaints[]{"memory is allocated or freed", "a lock is taken",
                                   "the system is called"};

/// The events of a block, made beforehand.
struct phrase {
    phrase() {
        for (int i = 0; i < nb_blocks; ++i) {
            event_list& events = lists[static_cast<std::size_t>(i)];
            const auto note = static_cast<std::uint8_t>(36 + i / 20 * 5 % 48);
            if (i % 20 == 0)
                events.add_midi(std::array<std::uint8_t, 3>{0x90, note, 100}, i % usual_block);
            if (i % 20 == 15)
                events.add_midi(std::array<std::uint8_t, 3>{0x80, note, 64}, i % usual_block);
            if (i % 20 == 10)
                events.add_midi(std::array<std::uint8_t, 3>{0xB0, 1, note}, 0);
            (void)events.records();
        }
    }

    std::vector<event_list> lists = std::vector<event_list>(nb_blocks);
};

/// What a host's audio thread calls.
void play(subject& played, phrase& notes) {
    const int nb_parameters = played.nb_parameters();
    for (int i = 0; i < nb_blocks; ++i) {
        event_list& events = notes.lists[static_cast<std::size_t>(i)];
        if (!events.is_empty())
            played.send(events);
        if (nb_parameters > 0) {
            const int index = i % nb_parameters;
            played.set(index, played.get(index));
        }
        played.run(usual_block);
    }
}

watched_calls count_calls(subject& played, phrase& notes) {
    watched_calls calls;
    std::thread audio([&] {
        played.run(usual_block); // a library's thread-local memory comes at its first use
        watched_calls_begin();
        play(played, notes);
        calls = watched_calls_end();
    });
    audio.join();
    return calls;
}

void expect_none(trial& running, subject& played, watched kind) {
    phrase notes;
    played.make_room(usual_block);
    const watched_calls calls = count_calls(played, notes);
    running.at_frame(no_frame); // a count is of all of them
    const auto index = static_cast<int>(kind);
    running.expect(calls.nb[index] == 0, std::string{complaints[index]} + " "
                                             + std::to_string(calls.nb[index]) + " times, first by "
                                             + (calls.first[index] ? calls.first[index] : ""));
}

void require_counting(const trial& running, const subject& played) {
    require_outputs(running, played);
    if (!watched_calls_are_counted())
        running.skip("this program is built for a sanitizer");
}

void at_each_rate(trial& running, watched kind) {
    for (const int rate : {22050, 32000, 44100, 48000, 88200, 96000, 176400, 192000}) {
        subject played(running, rate, usual_block);
        require_counting(running, played);
        expect_none(running, played, kind);
    }
}

void with_the_panel(trial& running, watched kind) {
    panel_shown user(running);
    require_counting(running, user.plugin());
    user.idle(5);
    expect_none(running, user.plugin(), kind);
}

enum class strict_stage : int { before, inside, done };

/// Under this mode the process may read, write and end; any other call of the system kills it.
[[noreturn]] void play_strictly(subject& played, phrase& notes, std::atomic<strict_stage>& stage) {
    if (prctl(PR_SET_SECCOMP, SECCOMP_MODE_STRICT) == 0) {
        stage = strict_stage::inside;
        play(played, notes);
        stage = strict_stage::done;
    }
    for (;;)
        syscall(SYS_exit, 0);
}

void strict_mode(trial& running) {
    subject played(running, usual_rate, usual_block);
    require_outputs(running, played);
    phrase notes;
    played.make_room(usual_block);
    void* const memory = mmap(nullptr, sizeof(std::atomic<strict_stage>), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw std::bad_alloc{};
    auto& stage = *new (memory) std::atomic<strict_stage>{strict_stage::before};
    const pid_t child = fork();
    running.expect(child >= 0, "no process can be started");
    if (child == 0)
        play_strictly(played, notes, stage);
    int status = 0;
    waitpid(child, &status, 0);
    if (stage == strict_stage::before)
        running.skip("this system has no strict mode");
    const int signal = WIFSIGNALED(status) ? WTERMSIG(status) : SIGKILL;
    running.expect(stage == strict_stage::done,
                   signal == SIGKILL ? "the system is called"
                                     : std::string{"it crashes: "} + strsignal(signal));
}

} // namespace

table audio_thread_rows() {
    table rows;
    for (const auto& [name, kind] : {std::pair{"allocation", watched::allocation},
                                     {"locks", watched::lock},
                                     {"files and mappings", watched::system}}) {
        const std::string start = std::string{"audio-thread/"} + name;
        rows.push_back({start, demand::interface,
                        [kind = kind](trial& running) { at_each_rate(running, kind); }});
        rows.push_back({start + " with the panel open", demand::interface,
                        [kind = kind](trial& running) { with_the_panel(running, kind); }});
    }
    rows.push_back({"audio-thread/strict mode", demand::hosts, strict_mode});
    return rows;
}
