#pragma once
/// The command's instrument, whatever its format: a plug-in that it asks, sets up and renders with.

#include "failure/failure.h"
#include "platform/library.h"
#include "plugin/activity.h"
#include "plugin/event_list.h"
#include "plugin/panel_edit.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What a plug-in says of itself, for people: "vendor", "Quenmar".
struct plugin_fact {
    std::string label;
    std::string text;
};

/// A channel each, of as many samples as a block has at most.
using channel_memory = std::span<float* const>;

struct editor_extent {
    int width = 0; ///< pixels
    int height = 0;

    [[nodiscard]] bool is_empty() const { return width <= 0 || height <= 0; }
};

enum class plugin_format { vst, clap, lv2 };

/// By what the file is called, or by what lies in the folder; whether it holds a plug-in of that
/// format is another question.
[[nodiscard]] plugin_format plugin_format_of(const std::filesystem::path& file);

class plugin {
public:
    virtual ~plugin() = default; ///< stops it if it runs, and closes it
    plugin(const plugin&) = delete;
    plugin& operator=(const plugin&) = delete;

    /// Throws a failure that names the file, what it does, such as "has no editor", and the next
    /// step if one was given.
    [[noreturn]] void fail(const std::string& what) const;
    void advise(const std::string& next_step) { next_step_ = next_step; }

    [[nodiscard]] virtual std::string name() = 0;
    [[nodiscard]] virtual std::string id() = 0; ///< as its format has it, printable
    [[nodiscard]] virtual std::vector<plugin_fact> facts() = 0;

    [[nodiscard]] virtual int nb_parameters() const = 0;
    [[nodiscard]] virtual std::string parameter_name(int index) = 0;
    [[nodiscard]] virtual std::string parameter_text(int index) = 0; ///< where it is, and its unit
    [[nodiscard]] virtual float parameter(int index) = 0;            ///< 0 to 1
    virtual void set_parameter(int index, float value) = 0;

    [[nodiscard]] virtual bool is_instrument() const { return true; } ///< it says
    [[nodiscard]] virtual int nb_inputs() const { return 0; }
    [[nodiscard]] virtual int nb_outputs() const = 0;
    [[nodiscard]] int nb_channels() const; ///< 1 or 2: the outputs that are listened to

    /// Why no sound can be had of it, such as "has no audio output"; "" if it can.
    [[nodiscard]] virtual std::string why_silent() const;
    void require_sound() const; ///< throws a failure if there is none

    /// Announces rate and block size; only while it does not run.
    void prepare(double rate_hz, int block_frames);

    /// Only after prepare. Throws a failure if the plug-in refuses.
    void start(host_activity for_what = host_activity::renders);
    void stop(); ///< if it runs

    /// The song's time, which plug-ins of some formats ask for.
    [[nodiscard]] virtual VstTimeInfo& time() { return untold_time_; }

    /// Hands over what happens in the block that is processed next; more than one call is possible.
    virtual void send(event_list& events) = 0;

    /// Processes a block, of the announced size unless a smaller one is given. The channel's
    /// samples are in output() until the next call, at its beginning.
    void process() { process(block_frames_); }
    void process(int nb_frames) { process(inputs_.pointers, outputs_.pointers, nb_frames); }
    [[nodiscard]] std::span<const float> output(int channel) const;

    /// The same with memory of the caller's for all inputs and outputs.
    virtual void process(channel_memory inputs, channel_memory outputs, int nb_frames) = 0;

    /// The state that a host would save, as the format has it; nothing where the plug-in leaves
    /// saving to its host. [setup]
    [[nodiscard]] virtual std::optional<std::string> save() { return {}; }
    virtual bool load(std::string_view /*state*/) { return false; } ///< whether it is taken

    /// What holds its functions: the file, if it is no folder.
    [[nodiscard]] virtual std::filesystem::path library_file() const { return file_; }

    // Its editor in a host's window, if it has one: see open_editor. All is [ui].

    [[nodiscard]] virtual bool has_editor() const { return false; }

    /// Empty if the plug-in does not tell; some know it only once they are open.
    [[nodiscard]] virtual editor_extent editor_size() { return {}; }

    /// Tells how many times as large as plain the editor is wanted, before it is opened. Returns
    /// whether the plug-in heeds that; it may come as near to it as it can.
    virtual bool set_editor_scale(double /*scale*/) { return false; }

    virtual bool open_editor(void* /*window*/) { return false; } ///< false where it refuses
    virtual void close_editor() {}
    virtual void idle_editor() {} ///< some 50 times a second

    /// Who is told of what the player moves on the panel. [ui]
    virtual void set_listener(const std::function<void(const panel_edit&)>& /*listener*/) {}

protected:
    explicit plugin(const std::filesystem::path& file) : file_{file} {}

    virtual void set_up() = 0;                       ///< at the rate and block size below
    virtual void resume(host_activity for_what) = 0; ///< throws a failure if it refuses
    virtual void suspend() = 0;

    [[nodiscard]] bool runs() const { return runs_; }

    double rate_hz_ = 48000;
    int block_frames_ = 64;

private:
    struct channels {
        void resize(int nb_channels, int nb_frames);

        std::vector<std::vector<float>> samples{};
        std::vector<float*> pointers{};
    };

    std::filesystem::path file_;
    std::string next_step_{};
    bool runs_ = false;
    channels inputs_{};
    channels outputs_{};
    VstTimeInfo untold_time_{};
};

/// Loads the plug-in and opens it. Throws a failure that names the file and the reason, of misuse
/// where it is no plug-in of a format that is known here.
[[nodiscard]] std::unique_ptr<plugin>
plugin_open(const std::filesystem::path& file,
            library::in_the_end then = library::in_the_end::stays);

/// The same; what it throws tells the next step, too.
[[nodiscard]] std::unique_ptr<plugin> plugin_load(const std::filesystem::path& file);

/// Loads the plug-in in a child process, rehearses there what is planned with it, and closes it.
/// Throws a failure if there is no such file or the child does not survive. Whatever else the
/// plug-in refuses, it refuses again in this process, into which it may be loaded now.
void plugin_try(const std::filesystem::path& file, const std::function<void(plugin&)>& rehearse);
