#pragma once
/// A host of one instrument, which writes down what the panel tells it and answers as it is told.

#include "tests/panel_picture/panel_picture.h"
#include "tests/vst/playing.h"

#include <functional>
#include <map>
#include <string>
#include <utility>

struct panel_host {
    explicit panel_host(VstInt32 nbPrograms = 0) {
        organ* engine = korvel_create("Tindelwax");
        p_control = engine->p_control;
        plugin = new Organ(callback, nbPrograms, 10, engine);
        record = plugin->getAeffect();
        record->user = this;
    }
    ~panel_host() { end(); }

    void end() {
        if (std::exchange(plugin, nullptr))
            record->dispatcher(record, effClose, 0, 0, nullptr, 0);
    }

    VstIntPtr ask(VstInt32 opcode, VstIntPtr value = 0, void* ptr = nullptr) const {
        return record->dispatcher(record, opcode, 0, value, ptr, 0);
    }
    VstIntPtr tell_scale(float scale) const {
        return record->dispatcher(record, effVendorSpecific, kEditorScaleIndex, kEditorScaleValue,
                                  nullptr, scale);
    }
    bool open(void* parent) const { return ask(effEditOpen, 0, parent) != 0; }
    void close() const { ask(effEditClose); }
    void idle() const { ask(effEditIdle); }
    void set(VstInt32 index, float value) const { record->setParameter(record, index, value); }
    float get(VstInt32 index) const { return record->getParameter(record, index); }

    /// What it was told since the last time, with the control's tag: "b6 s6 i e6" begins and ends a
    /// gesture in which parameter 6 was set and the host got a turn.
    std::string told() { return std::exchange(calls, ""); }

    /// What the panel shows of the parameters as they are.
    [[nodiscard]] CDrawContext picture() const {
        panel_state state{};
        for (std::size_t i = 0; i < state.values.size(); ++i)
            state.values[i] = get(static_cast<VstInt32>(i));
        return panel_picture(state);
    }

    Organ* plugin; ///< null once it has ended
    AEffect* record;
    control* p_control;                             ///< the plug-in's
    std::map<VstInt32, std::function<void()>> at{}; ///< what the host does when asked that
    bool has_file_selector = false;
    std::string chosen{}; ///< what its file selector answers; empty: cancelled
    int nb_requests = 0;  ///< to its file selector
    std::string calls{};

private:
    static VstIntPtr VSTCALLBACK callback(AEffect* effect, VstInt32 opcode, VstInt32 index,
                                          VstIntPtr, void* ptr, float) {
        auto* self = static_cast<panel_host*>(effect->user);
        return self ? self->answer(opcode, index, ptr) : 0;
    }

    VstIntPtr answer(VstInt32 opcode, VstInt32 index, void* ptr) {
        static const std::map<VstInt32, char> letters{{audioMasterBeginEdit, 'b'},
                                                      {audioMasterAutomate, 's'},
                                                      {audioMasterEndEdit, 'e'},
                                                      {audioMasterIdle, 'i'}};
        if (const auto letter = letters.find(opcode); letter != letters.end()) {
            calls += calls.empty() ? "" : " ";
            calls += letter->second;
            calls += opcode == audioMasterIdle ? "" : std::to_string(index);
        }
        if (at.contains(opcode)) {
            const auto act = at[opcode]; // it may change what it does the next time
            act();
        }
        if (opcode != audioMasterOpenFileSelector)
            return opcode == audioMasterCanDo && has_file_selector;
        char*& path = static_cast<VstFileSelect*>(ptr)->returnPath;
        if (++nb_requests % 2 == 0) // some hosts answer in memory of their own
            path = chosen.data();
        else
            chosen.copy(path, 1023);
        return !chosen.empty();
    }
};
