#pragma once
/// The editor of a CLAP plug-in, and what such plug-ins ask of their host for its sake: timers, and
/// turns on the main thread. It is the `host_data` of the host that the plug-in knows. All is [ui]
/// unless tagged.

#include "clap/interface.h"
#include "plugin/plugin.h"

#include <atomic>
#include <chrono>
#include <vector>

class clap_editor {
public:
    /// Finds out what the plug-in has, which is there until the editor is closed for good.
    void attach(const clap_plugin* plugin);

    [[nodiscard]] bool exists() const { return gui_; }
    [[nodiscard]] editor_extent size();
    bool set_scale(double scale); ///< until it is closed; whether it heeds that
    bool open(void* window);      ///< false where it refuses
    void close();                 ///< does nothing where it was neither opened nor measured

    /// Lets the plug-in do what is due.
    void idle();

    // The host's side, as the interface has it.

    static const clap_host_timer_support timer_support;
    static void request_callback(const clap_host* host); ///< [any]

private:
    using clock = std::chrono::steady_clock;

    struct timer {
        clap_id id;
        clock::duration period;
        clock::time_point due;
    };

    static clap_editor& of(const clap_host* host);
    bool create();
    [[nodiscard]] std::vector<clap_id> take_due();

    const clap_plugin* plugin_ = nullptr;
    const clap_plugin_gui* gui_ = nullptr; ///< null where it has none for this system's windows
    bool is_created_ = false;
    std::vector<timer> timers_{};
    clap_id nb_timers_so_far_ = 0;
    std::atomic<bool> wants_turn_ = false;
};
