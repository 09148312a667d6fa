#include "vst/audioeffectx.h"

#include "vst/aeffeditor.h"

#include "tests/vst/recording.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <string>

namespace {

struct recording_effect final : default_effect, call_log {
    VstInt32 processEvents(VstEvents* e) override { return note("processEvents", e); }
    bool canParameterBeAutomated(VstInt32 i) override { return note("canParameterBeAutomated", i); }
    bool string2parameter(VstInt32 i, char* t) override { return note("string2parameter", i, t); }
    bool getProgramNameIndexed(VstInt32 c, VstInt32 i, char* t) override {
        return note("getProgramNameIndexed", c, i, t);
    }
    bool getInputProperties(VstInt32 i, VstPinProperties* p) override {
        return note("getInputProperties", i, p);
    }
    bool getOutputProperties(VstInt32 i, VstPinProperties* p) override {
        return note("getOutputProperties", i, p);
    }
    VstInt32 getPlugCategory() override { return note("getPlugCategory"); }
    bool offlineNotify(VstAudioFile* f, VstInt32 n, bool start) override {
        return note("offlineNotify", f, n, start);
    }
    bool offlinePrepare(VstOfflineTask* t, VstInt32 n) override {
        return note("offlinePrepare", t, n);
    }
    bool offlineRun(VstOfflineTask* t, VstInt32 n) override { return note("offlineRun", t, n); }
    bool processVariableIo(VstVariableIo* v) override { return note("processVariableIo", v); }
    bool setSpeakerArrangement(VstSpeakerArrangement* in, VstSpeakerArrangement* out) override {
        return note("setSpeakerArrangement", in, out);
    }
    bool getSpeakerArrangement(VstSpeakerArrangement** in, VstSpeakerArrangement** out) override {
        return note("getSpeakerArrangement", in, out);
    }
    bool setBypass(bool on) override { return note("setBypass", on); }
    bool getEffectName(char* t) override { return note("getEffectName", t); }
    bool getVendorString(char* t) override { return note("getVendorString", t); }
    bool getProductString(char* t) override { return note("getProductString", t); }
    VstInt32 getVendorVersion() override { return note("getVendorVersion"); }
    VstIntPtr vendorSpecific(VstInt32 i, VstIntPtr v, void* p, float f) override {
        return note("vendorSpecific", i, v, p, f);
    }
    VstInt32 canDo(char* t) override { return note("canDo", t); }
    VstInt32 getGetTailSize() override { return note("getGetTailSize"); }
    bool getParameterProperties(VstInt32 i, VstParameterProperties* p) override {
        return note("getParameterProperties", i, p);
    }
    VstInt32 getVstVersion() override { return note("getVstVersion"); }
    VstInt32 getMidiProgramName(VstInt32 c, MidiProgramName* p) override {
        return note("getMidiProgramName", c, p);
    }
    VstInt32 getCurrentMidiProgram(VstInt32 c, MidiProgramName* p) override {
        return note("getCurrentMidiProgram", c, p);
    }
    VstInt32 getMidiProgramCategory(VstInt32 c, MidiProgramCategory* p) override {
        return note("getMidiProgramCategory", c, p);
    }
    bool hasMidiProgramsChanged(VstInt32 c) override { return note("hasMidiProgramsChanged", c); }
    bool getMidiKeyName(VstInt32 c, MidiKeyName* k) override {
        return note("getMidiKeyName", c, k);
    }
    bool beginSetProgram() override { return note("beginSetProgram"); }
    bool endSetProgram() override { return note("endSetProgram"); }
    VstInt32 getNextShellPlugin(char* t) override { return note("getNextShellPlugin", t); }
    VstInt32 startProcess() override { return note("startProcess"); }
    VstInt32 stopProcess() override { return note("stopProcess"); }
    VstInt32 setTotalSampleToProcess(VstInt32 n) override {
        return note("setTotalSampleToProcess", n);
    }
    bool setPanLaw(VstInt32 type, float law) override { return note("setPanLaw", type, law); }
    VstInt32 beginLoadBank(VstPatchChunkInfo* c) override { return note("beginLoadBank", c); }
    VstInt32 beginLoadProgram(VstPatchChunkInfo* c) override { return note("beginLoadProgram", c); }
    bool setProcessPrecision(VstInt32 p) override { return note("setProcessPrecision", p); }
    VstInt32 getNumMidiInputChannels() override { return note("getNumMidiInputChannels"); }
    VstInt32 getNumMidiOutputChannels() override { return note("getNumMidiOutputChannels"); }
    void setBlockSize(VstInt32 n) override { note("setBlockSize", n); }
};

TEST(AudioEffectX, OpcodesReachTheirOperations) {
    const VstIntPtr other = address_of(other_data);
    struct {
        VstInt32 opcode;
        const char* call;
        VstIntPtr result;
        VstIntPtr value = 5;
        VstInt32 index = 3;
    } const rows[] = {
        {11, "setBlockSize(5)", 0}, // of the base
        {25, "processEvents(ptr)", 7},
        {26, "canParameterBeAutomated(3)", 1},
        {27, "string2parameter(3, ptr)", 1},
        {29, "getProgramNameIndexed(5, 3, ptr)", 1},
        {33, "getInputProperties(3, ptr)", 1},
        {34, "getOutputProperties(3, ptr)", 1},
        {35, "getPlugCategory()", 7},
        {38, "offlineNotify(ptr, 5, true)", 1},
        {38, "offlineNotify(ptr, 5, false)", 1, 5, 0},
        {39, "offlinePrepare(ptr, 5)", 1},
        {40, "offlineRun(ptr, 5)", 1},
        {41, "processVariableIo(ptr)", 1},
        {42, "setSpeakerArrangement(value, ptr)", 1, other},
        {42, "setSpeakerArrangement(null, ptr)", 1, 0},
        {44, "setBypass(true)", 1},
        {44, "setBypass(false)", 1, 0},
        {45, "getEffectName(ptr)", 1},
        {47, "getVendorString(ptr)", 1},
        {48, "getProductString(ptr)", 1},
        {49, "getVendorVersion()", 7},
        {50, "vendorSpecific(3, 5, ptr, 0.5)", 7},
        {51, "canDo(ptr)", 7},
        {52, "getGetTailSize()", 7},
        {56, "getParameterProperties(3, ptr)", 1},
        {58, "getVstVersion()", 7},
        {62, "getMidiProgramName(3, ptr)", 7},
        {63, "getCurrentMidiProgram(3, ptr)", 7},
        {64, "getMidiProgramCategory(3, ptr)", 7},
        {65, "hasMidiProgramsChanged(3)", 1},
        {66, "getMidiKeyName(3, ptr)", 1},
        {67, "beginSetProgram()", 1},
        {68, "endSetProgram()", 1},
        {69, "getSpeakerArrangement(value, ptr)", 1, other},
        {70, "getNextShellPlugin(ptr)", 7},
        {71, "startProcess()", 7},
        {72, "stopProcess()", 7},
        {73, "setTotalSampleToProcess(5)", 7},
        {74, "setPanLaw(5, 0.5)", 1},
        {75, "beginLoadBank(ptr)", 7},
        {76, "beginLoadProgram(ptr)", 7},
        {77, "setProcessPrecision(5)", 1},
        {78, "getNumMidiInputChannels()", 7},
        {79, "getNumMidiOutputChannels()", 7},
    };
    for (const auto& row : rows) {
        recording_effect effect;
        EXPECT_EQ(effect.ask(row.opcode, row.index, row.value, host_data, 0.5f), row.result)
            << "opcode " << row.opcode;
        EXPECT_EQ(effect.calls, row.call) << "opcode " << row.opcode;
    }
}

TEST(AudioEffectX, DefaultsHaveNothingToOffer) {
    const std::map<VstInt32, VstIntPtr> results = {
        {22, 0x4E764566}, {26, 1}, {58, 2400}, {63, -1}, {73, 640}};
    for (VstInt32 opcode = -3; opcode < 90; ++opcode) {
        if (opcode == effClose || opcode == effGetSpeakerArrangement)
            continue;
        default_effect effect;
        const auto known = results.find(opcode);
        const VstIntPtr result = known == results.end() ? 0 : known->second;
        const bool is_text = opcode >= effGetProgramName && opcode <= effGetParamName;

        std::fill(std::begin(host_data), std::end(host_data), 'x');
        EXPECT_EQ(effect.ask(opcode, 1, 640, host_data, 0.5f), result) << "opcode " << opcode;
        EXPECT_EQ(host_data[0], is_text ? '\0' : 'x') << "opcode " << opcode;
        EXPECT_EQ(std::count(std::begin(host_data), std::end(host_data), 'x'), is_text ? 255 : 256)
            << "opcode " << opcode;
    }
}

TEST(AudioEffectX, NoOpcodeNeedsItsPointers) {
    AEffEditor editor;
    for (VstInt32 opcode = -3; opcode < 90; ++opcode) {
        if (opcode == effClose)
            continue;
        default_effect effect;
        effect.setEditor(&editor);
        effect.ask(opcode);
        effect.setEditor(nullptr);
    }
}

TEST(AudioEffectX, DefaultSpeakerArrangementIsNone) {
    default_effect effect;
    VstSpeakerArrangement arrangement{};
    VstSpeakerArrangement* in = &arrangement;
    VstSpeakerArrangement* out = &arrangement;
    EXPECT_EQ(effect.ask(effGetSpeakerArrangement, 0, address_of(&in), &out), 0);
    EXPECT_EQ(in, nullptr);
    EXPECT_EQ(out, nullptr);
}

struct key_editor final : AEffEditor, call_log {
    bool onKeyDown(VstKeyCode& key) override { return note_key("down", key); }
    bool onKeyUp(VstKeyCode& key) override { return note_key("up", key); }
    bool setKnobMode(VstInt32 mode) override { return note("knob", mode); }
    bool note_key(const char* name, const VstKeyCode& key) {
        return note(name, key.character, int{key.virt}, int{key.modifier});
    }
};

TEST(AudioEffectX, KeysAreUnpackedForTheEditor) {
    struct {
        VstInt32 opcode;
        VstIntPtr value;
        float opt;
        const char* call;
    } const rows[] = {
        {effEditKeyDown, 0, 2.7f, "down(65, 0, 2)"},
        {effEditKeyUp, 0x105, 2.7f, "up(65, 5, 2)"},
        {effEditKeyDown, -1, 257.9f, "down(65, 255, 1)"},
        {effEditKeyDown, 0, -1.5f, "down(65, 0, 255)"},
        {effEditKeyDown, 0, -0.9f, "down(65, 0, 0)"},
        {effEditKeyDown, 0, 32769.0f, "down(65, 0, 0)"},
        {effEditKeyDown, 0, std::numeric_limits<float>::quiet_NaN(), "down(65, 0, 0)"},
        {effSetEditKnobMode, 2, 0, "knob(2)"},
    };
    for (const auto& row : rows) {
        default_effect effect;
        EXPECT_EQ(effect.ask(row.opcode, 65, row.value, nullptr, row.opt), 0) << row.call;
        auto* editor = new key_editor;
        effect.setEditor(editor);
        EXPECT_EQ(effect.ask(row.opcode, 65, row.value, nullptr, row.opt), 1) << row.call;
        EXPECT_EQ(editor->calls, row.call);
    }
}

struct midi_effect final : default_effect {
    VstInt32 canDo(char* text) override {
        return std::string(text) == "receiveVstMidiEvent" ? answer : 0;
    }
    VstInt32 answer = 0;
    using default_effect::default_effect;
};

TEST(AudioEffectX, ResumeAsksForMidiWhenItIsWanted) {
    struct {
        bool is_synth;
        VstInt32 can_do;
        const char* requests;
    } const rows[] = {{false, 0, ""},
                      {false, -1, ""},
                      {false, 1, "6(0, 1, null, 0)"},
                      {true, 0, "6(0, 1, null, 0)"}};
    for (const auto& row : rows) {
        fake_host host;
        midi_effect effect{fake_host::callback};
        effect.isSynth(row.is_synth);
        effect.answer = row.can_do;
        effect.ask(effMainsChanged, 0, 1);
        EXPECT_EQ(host.log.calls, row.requests) << row.is_synth << " " << row.can_do;
    }
}

TEST(AudioEffectX, InstrumentsAreOfTheSynthCategory) {
    default_effect effect;
    effect.isSynth();
    EXPECT_EQ(effect.ask(effGetPlugCategory), 2);
}

} // namespace
