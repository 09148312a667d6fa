#include "vst/audioeffectx.h"

#include "vst/aeffeditor.h"

#include "tests/vst/recording.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

struct recording_effect final : default_effect, call_log {
    bool getProgramNameIndexed(VstInt32 c, VstInt32 i, char* t) override {
        return note("getProgramNameIndexed", c, i, t);
    }
    bool offlineNotify(VstAudioFile* f, VstInt32 n, bool start) override {
        return note("offlineNotify", f, n, start);
    }
    bool setSpeakerArrangement(VstSpeakerArrangement* in, VstSpeakerArrangement* out) override {
        return note("setSpeakerArrangement", in, out);
    }
    bool setBypass(bool on) override { return note("setBypass", on); }
    VstIntPtr vendorSpecific(VstInt32 i, VstIntPtr v, void* p, float f) override {
        return note("vendorSpecific", i, v, p, f);
    }
    bool setPanLaw(VstInt32 type, float law) override { return note("setPanLaw", type, law); }
    void setBlockSize(VstInt32 n) override { note("setBlockSize", n); }
};

TEST(AudioEffectX, OpcodesHandOnWhatTheyMean) {
    const VstIntPtr other = address_of(other_data);
    const struct {
        VstInt32 opcode, index;
        VstIntPtr value;
        const char* call;
        VstIntPtr result = 1;
    } rows[] = {{effSetBlockSize, 3, 5, "setBlockSize(5)", 0}, // of the base
                {effGetProgramNameIndexed, 3, 5, "getProgramNameIndexed(5, 3, ptr)"},
                {effOfflineNotify, 3, 5, "offlineNotify(ptr, 5, true)"},
                {effOfflineNotify, 0, 5, "offlineNotify(ptr, 5, false)"},
                {effSetSpeakerArrangement, 3, other, "setSpeakerArrangement(value, ptr)"},
                {effSetSpeakerArrangement, 3, 0, "setSpeakerArrangement(null, ptr)"},
                {effSetBypass, 0, 5, "setBypass(true)"},
                {effSetBypass, 3, 0, "setBypass(false)"},
                {effVendorSpecific, 3, 5, "vendorSpecific(3, 5, ptr, 0.5)", 7},
                {effSetPanLaw, 3, 5, "setPanLaw(5, 0.5)"}};
    for (const auto& row : rows) {
        recording_effect effect;
        EXPECT_EQ(effect.ask(row.opcode, row.index, row.value, host_data, 0.5f), row.result)
            << row.call;
        EXPECT_EQ(effect.calls, row.call);
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
    bool note_key(const char* name, const VstKeyCode& key) {
        return note(name, key.character, int{key.virt}, int{key.modifier});
    }
};

TEST(AudioEffectX, KeysAreUnpackedForTheEditor) {
    const struct {
        VstInt32 opcode;
        VstIntPtr value;
        float opt;
        const char* call;
    } rows[] = {
        {effEditKeyDown, 0, 2.7f, "down(65, 0, 2)"},
        {effEditKeyUp, 0x105, 2.7f, "up(65, 5, 2)"},
        {effEditKeyDown, -1, 257.9f, "down(65, 255, 1)"},
        {effEditKeyDown, 0, -1.5f, "down(65, 0, 255)"},
        {effEditKeyDown, 0, -0.9f, "down(65, 0, 0)"},
        {effEditKeyDown, 0, 32769.0f, "down(65, 0, 0)"},
        {effEditKeyDown, 0, std::numeric_limits<float>::quiet_NaN(), "down(65, 0, 0)"},
    };
    for (const auto& row : rows) {
        default_effect effect;
        auto* editor = new key_editor;
        effect.setEditor(editor);
        EXPECT_EQ(effect.ask(row.opcode, 65, row.value, nullptr, row.opt), 1) << row.call;
        EXPECT_EQ(editor->calls, row.call);
    }
}

struct midi_effect final : default_effect {
    using default_effect::default_effect;
    VstInt32 canDo(char* text) override {
        return std::string(text) == "receiveVstMidiEvent" ? answer : 0;
    }
    VstInt32 answer = 0;
};

TEST(AudioEffectX, ResumeAsksForMidiWhenItIsWanted) {
    const struct {
        bool is_synth;
        VstInt32 can_do;
        const char* requests;
    } rows[] = {{false, -1, ""}, {false, 1, "6(0, 1, null, 0)"}, {true, 0, "6(0, 1, null, 0)"}};
    for (const auto& row : rows) {
        fake_host host;
        midi_effect effect{fake_host::callback};
        effect.isSynth(row.is_synth);
        effect.answer = row.can_do;
        effect.ask(effMainsChanged, 0, 1);
        EXPECT_EQ(host.log.calls, row.requests) << row.is_synth << " " << row.can_do;
    }
}

} // namespace
