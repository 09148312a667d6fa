#pragma once
/// A host of one instrument, which writes down what the panel tells it and answers as it is told.

#include "tests/vst/playing.h"

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

struct panel_host {
    struct gesture {
        VstInt32 opcode; ///< audioMasterBeginEdit, audioMasterAutomate or audioMasterEndEdit
        VstInt32 index;
        float value;
        bool operator==(const gesture&) const = default;
    };

    explicit panel_host(VstInt32 nbPrograms = 0) {
        engine = korvel_create("Tindelwax");
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

    VstIntPtr ask(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                  float opt = 0) {
        return record->dispatcher(record, opcode, index, value, ptr, opt);
    }
    bool open(void* parent) { return ask(effEditOpen, 0, 0, parent) != 0; }
    void close() { ask(effEditClose); }
    void idle() { ask(effEditIdle); }

    void sendMidi(int status, int data1, int data2) {
        send(*plugin, {{0, {status, data1, data2}}});
    }

    Organ* plugin; ///< null once it has ended
    AEffect* record;
    organ* engine; ///< the plug-in's, and its registry
    control* p_control;
    std::vector<gesture> gestures{};
    std::map<VstInt32, std::function<void()>> at{}; ///< what the host does when asked that
    bool has_file_selector = false;
    std::string chosen{}; ///< what its file selector answers; empty: cancelled
    int nb_requests = 0;  ///< to its file selector

private:
    static VstIntPtr VSTCALLBACK callback(AEffect* effect, VstInt32 opcode, VstInt32 index,
                                          VstIntPtr, void* ptr, float value) {
        auto* self = static_cast<panel_host*>(effect->user);
        if (!self)
            return 0;
        if (self->at.contains(opcode))
            self->at[opcode]();
        return self->answer(opcode, index, ptr, value);
    }

    VstIntPtr answer(VstInt32 opcode, VstInt32 index, void* ptr, float value) {
        switch (opcode) {
        case audioMasterBeginEdit:
        case audioMasterAutomate:
        case audioMasterEndEdit:
            gestures.push_back({opcode, index, value});
            return 1;
        case audioMasterCanDo:
            return has_file_selector ? 1 : 0;
        case audioMasterOpenFileSelector:
            return selectFile(*static_cast<VstFileSelect*>(ptr));
        default:
            return 0;
        }
    }

    bool selectFile(VstFileSelect& request) {
        ++nb_requests;
        chosen.copy(request.returnPath, 1023);
        return !chosen.empty();
    }
};
