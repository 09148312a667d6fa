#pragma once
/// A VST 2.4 plug-in as the command's instrument.

#include "plugin/command_host.h"
#include "plugin/effect.h"
#include "plugin/plugin.h"

class vst_plugin final : public plugin {
public:
    using call_listener = std::function<void(const host_call&)>;

    /// A listener hears what it asks of its host, on whatever thread. Throws a failure that names
    /// the file and the reason.
    explicit vst_plugin(const std::filesystem::path& file,
                        library::in_the_end then = library::in_the_end::stays,
                        const call_listener& heard_by = {});
    ~vst_plugin() override;

    std::string name() override { return text(effGetEffectName); }
    std::string id() override;
    std::vector<plugin_fact> facts() override;

    [[nodiscard]] int nb_parameters() const override { return record().numParams; }
    std::string parameter_name(int index) override { return text(effGetParamName, index); }
    std::string parameter_text(int index) override;
    [[nodiscard]] const effect& raw() const { return effect_; }

    float parameter(int index) override { return effect_.get(index); }
    void set_parameter(int index, float value) override { effect_.set(index, value); }

    [[nodiscard]] bool is_instrument() const override { return record().flags & effFlagsIsSynth; }
    [[nodiscard]] int nb_inputs() const override { return record().numInputs; }
    [[nodiscard]] int nb_outputs() const override { return record().numOutputs; }
    [[nodiscard]] std::string why_silent() const override;
    VstTimeInfo& time() override { return host_.time; }
    void set_listener(const std::function<void(const panel_edit&)>& listener) override {
        host_.hear_edit = listener;
    }
    void send(event_list& events) override;
    using plugin::process;
    void process(channel_memory inputs, channel_memory outputs, int nb_frames) override;

    std::optional<std::string> save() override; ///< the bank's chunk
    bool load(std::string_view state) override;

    [[nodiscard]] bool has_editor() const override;
    editor_extent editor_size() override;
    bool set_editor_scale(double scale) override {
        return ask(effVendorSpecific, kEditorScaleIndex, kEditorScaleValue, nullptr,
                   static_cast<float>(scale))
               != 0;
    }
    bool open_editor(void* window) override { return ask(effEditOpen, 0, 0, window) != 0; }
    void close_editor() override { ask(effEditClose); }
    void idle_editor() override { ask(effEditIdle); }

protected:
    void set_up() override;
    void resume(host_activity for_what) override;
    void suspend() override;

private:
    [[nodiscard]] const AEffect& record() const { return *effect_.record(); }
    VstIntPtr ask(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                  float opt = 0);

    /// The plug-in's answer to an opcode that writes a text, printable and without the blanks
    /// around it.
    std::string text(VstInt32 opcode, VstInt32 index = 0);

    command_host host_;
    effect effect_;
};
