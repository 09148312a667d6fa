#pragma once
/// The command's instrument: a plug-in that it asks, sets up and renders with.

#include "failure/failure.h"
#include "plugin/command_host.h"
#include "plugin/effect.h"
#include "plugin/event_list.h"

#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <vector>

class plugin {
public:
    /// Loads the plug-in and opens it. Throws a failure that names the file, the reason and the
    /// next step.
    explicit plugin(const std::filesystem::path& file);
    ~plugin(); ///< stops it if it runs, and closes it
    plugin(const plugin&) = delete;
    plugin& operator=(const plugin&) = delete;

    /// Throws such a failure: the file and what it does, such as "has no editor".
    [[noreturn]] void fail(const std::string& what) const;

    [[nodiscard]] const AEffect& record() const { return *effect_.record(); }
    [[nodiscard]] int nb_parameters() const;
    [[nodiscard]] int nb_channels() const; ///< 1 or 2: the outputs that are listened to

    VstIntPtr ask(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                  float opt = 0);

    /// The plug-in's answer to an opcode that writes a text, printable and without the blanks
    /// around it.
    [[nodiscard]] std::string text(VstInt32 opcode, VstInt32 index = 0);

    [[nodiscard]] float parameter(int index);
    void set_parameter(int index, float value);

    /// Announces rate and block size; only while it does not run.
    void prepare(double rate_hz, int block_frames);

    /// Only after prepare. Throws a failure if the plug-in cannot process.
    void start(command_host::activity for_what = command_host::activity::renders);
    void stop();

    /// Who is told of what the player moves on the panel. [ui]
    void set_listener(std::function<void(int parameter, float value)> listener) {
        host_.hear_automation = std::move(listener);
    }

    [[nodiscard]] VstTimeInfo& time() { return host_.time; }

    /// Hands over what happens in the block that is processed next; more than one call is possible.
    void send(event_list& events);

    /// Processes a block, of the announced size unless a smaller one is given. The channel's
    /// samples are in output() until the next call, at its beginning.
    void process() { process(host_.block_frames); }
    void process(int nb_frames);
    [[nodiscard]] std::span<const float> output(int channel) const;

private:
    std::string name_;
    command_host host_;
    effect effect_;
    bool runs_ = false;
    std::vector<std::vector<float>> inputs_{};
    std::vector<std::vector<float>> outputs_{};
    std::vector<float*> p_inputs_{};
    std::vector<float*> p_outputs_{};
};

/// Loads the plug-in in a child process, rehearses there what is planned with it, and closes it.
/// Throws a failure if there is no such file or the child does not survive. Whatever else the
/// plug-in refuses, it refuses again in this process, into which it may be loaded now.
void plugin_try(const std::filesystem::path& file, const std::function<void(plugin&)>& rehearse);
