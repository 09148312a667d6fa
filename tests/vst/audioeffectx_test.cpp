#include "vst/audioeffectx.h"

#include "tests/vst/recording.h"
#include "vst/aeffeditor.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

namespace {

/// Notes the operations whose arguments an opcode brings in another form.
struct recording_effect final : default_effect, call_log {
    void suspend() override { note("suspend"); }
    void resume() override { note("resume"); }
    void setSampleRate(float rate) override { note("setSampleRate", rate); }
    void setBlockSize(VstInt32 size) override { note("setBlockSize", size); }
    void setProgram(VstInt32 program) override { note("setProgram", program); }
    VstInt32 getChunk(void** data, bool preset) override { return note("getChunk", data, preset); }
    VstInt32 setChunk(void* data, VstInt32 size, bool preset) override {
        return note("setChunk", data, size, preset);
    }
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
};

TEST(AudioEffectX, OpcodesHandOnWhatTheyMean) {
    const VstIntPtr other = address_of(other_data);
    constexpr auto beyond =
        static_cast<VstIntPtr>(sizeof(VstIntPtr) == 4 ? INT32_MAX : std::int64_t{1} << 40);
    const struct {
        VstInt32 opcode, index;
        VstIntPtr value;
        const char* call;
        VstIntPtr result = 0;
    } rows[] = {{effSetProgram, 0, 3, "setProgram(3)"},
                {effSetProgram, 0, 4, ""}, // of four programs
                {effSetProgram, 0, -1, "setProgram(-1)"},
                {effSetProgram, 0, beyond, ""},
                {effSetSampleRate, 3, 2, "setSampleRate(0.5)"},
                {effSetBlockSize, 3, 2, "setBlockSize(2)"},
                {effSetBlockSize, 0, beyond, "setBlockSize(2147483647)"},
                {effSetBlockSize, 0, -beyond - 1, "setBlockSize(-2147483648)"},
                {effMainsChanged, 0, 1, "resume()"},
                {effMainsChanged, 1, 0, "suspend()"},
                {effGetChunk, 3, 0, "getChunk(ptr, true)", 7},
                {effGetChunk, 0, 2, "getChunk(ptr, false)", 7},
                {effSetChunk, 3, 2, "setChunk(ptr, 2, true)", 7},
                {effSetChunk, 0, 2, "setChunk(ptr, 2, false)", 7},
                {effGetProgramNameIndexed, 3, 5, "getProgramNameIndexed(5, 3, ptr)", 1},
                {effOfflineNotify, 3, 5, "offlineNotify(ptr, 5, true)", 1},
                {effOfflineNotify, 0, 5, "offlineNotify(ptr, 5, false)", 1},
                {effSetSpeakerArrangement, 3, other, "setSpeakerArrangement(value, ptr)", 1},
                {effSetSpeakerArrangement, 3, 0, "setSpeakerArrangement(null, ptr)", 1},
                {effSetBypass, 0, 5, "setBypass(true)", 1},
                {effSetBypass, 3, 0, "setBypass(false)", 1},
                {effVendorSpecific, 3, 5, "vendorSpecific(3, 5, ptr, 0.5)", 7},
                {effSetPanLaw, 3, 5, "setPanLaw(5, 0.5)", 1}};
    for (const auto& row : rows) {
        recording_effect effect;
        EXPECT_EQ(effect.ask(row.opcode, row.index, row.value, host_data, 0.5f), row.result)
            << "opcode " << row.opcode << ", value " << row.value;
        EXPECT_EQ(effect.calls, row.call) << "opcode " << row.opcode << ", value " << row.value;
    }
}

struct key_editor final : AEffEditor, call_log {
    bool onKeyDown(VstKeyCode& key) override { return note_key("down", key); }
    bool onKeyUp(VstKeyCode& key) override { return note_key("up", key); }
    bool note_key(const char* name, const VstKeyCode& key) {
        return note(name, key.character, int{key.virt}, int{key.modifier});
    }
};

TEST(AudioEffectX, KeysAreUnpackedForTheEditor) {
    default_effect effect;
    auto* editor = new key_editor;
    effect.setEditor(editor);
    for (const VstInt32 opcode : {effEditKeyDown, effEditKeyUp})
        for (const float opt :
             {2.7f, -0.9f, -1.5f, 32769.0f, std::numeric_limits<float>::infinity()})
            EXPECT_EQ(effect.ask(opcode, 65, 0x105, nullptr, opt), 1);
    EXPECT_EQ(editor->calls, "down(65, 5, 2) down(65, 5, 0) down(65, 5, 255) down(65, 5, 0) "
                             "down(65, 5, 0) up(65, 5, 2) up(65, 5, 0) up(65, 5, 255) "
                             "up(65, 5, 0) up(65, 5, 0)");
}

} // namespace
