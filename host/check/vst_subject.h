#pragma once
/// A VST 2 plug-in under judgement, for rows that ask what only its interface has. See subject.h.

#include "check/subject.h"
#include "plugin/vst_plugin.h"

class vst_subject : public subject {
public:
    /// Loads and opens it; a listener hears what it asks of its host.
    explicit vst_subject(trial& running, const vst_plugin::call_listener& heard_by = {})
        : vst_subject(running, std::make_unique<vst_plugin>(
                                   running.file, library::in_the_end::is_unloaded, heard_by)) {}

    vst_subject(trial& running, int rate, int block) : vst_subject(running) {
        prepare(rate, block);
    }

    VstIntPtr ask(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                  float opt = 0) const {
        return effect_.ask(opcode, index, value, ptr, opt);
    }
    [[nodiscard]] AEffect& record() const { return *effect_.record(); }
    [[nodiscard]] bool has(VstInt32 flag) const { return (record().flags & flag) != 0; }

    void set_rate(int rate) const {
        ask(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate));
    }
    void set_block(int nb_frames) const { ask(effSetBlockSize, 0, nb_frames); }

private:
    vst_subject(trial& running, std::unique_ptr<vst_plugin> opened)
        : subject(running, std::move(opened)),
          effect_{static_cast<const vst_plugin&>(tested()).raw()} {}

    const effect& effect_; ///< as long as it is not closed
};
