#include "vst/audioeffect.h"

#include "vst/aeffeditor.h"

#include "tests/vst/recording.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

/// Notes what reaches it in a log that outlives it.
struct recording_editor final : AEffEditor {
    explicit recording_editor(call_log& target) : log(target) {}
    ~recording_editor() override { log.note("~editor"); }

    bool getRect(ERect** rect) override { return log.note("getRect", rect); }
    bool open(void* ptr) override { return log.note("open", ptr); }
    void close() override { log.note("close"); }
    void idle() override { log.note("idle"); }

    call_log& log;
};

struct recording_effect final : AudioEffect {
    explicit recording_effect(call_log& target) : AudioEffect(nullptr, 4, 2), log(target) {}
    ~recording_effect() override { log.note("~effect"); }

    void open() override { log.note("open"); }
    void close() override { log.note("close"); }
    void suspend() override { log.note("suspend"); }
    void resume() override { log.note("resume"); }
    void setSampleRate(float rate) override { log.note("setSampleRate", rate); }
    void setBlockSize(VstInt32 size) override { log.note("setBlockSize", size); }
    void processReplacing(float** in, float** out, VstInt32 nb) override {
        log.note("processReplacing", in, out, nb);
    }
    void processDoubleReplacing(double** in, double** out, VstInt32 nb) override {
        log.note("processDoubleReplacing", in, out, nb);
    }
    void __processDeprecated(float** in, float** out, VstInt32 nb) override {
        log.note("__processDeprecated", in, out, nb);
    }
    void setParameter(VstInt32 i, float value) override { log.note("setParameter", i, value); }
    float getParameter(VstInt32 i) override { return 0.5f * static_cast<float>(i); }
    VstInt32 getProgram() override { return log.note("getProgram"); }
    void setProgram(VstInt32 program) override { log.note("setProgram", program); }
    void setProgramName(char* name) override { log.note("setProgramName", name); }
    void getProgramName(char* name) override { log.note("getProgramName", name); }
    void getParameterLabel(VstInt32 i, char* t) override { log.note("getParameterLabel", i, t); }
    void getParameterDisplay(VstInt32 i, char* t) override {
        log.note("getParameterDisplay", i, t);
    }
    void getParameterName(VstInt32 i, char* t) override { log.note("getParameterName", i, t); }
    VstInt32 getChunk(void** data, bool preset) override {
        return log.note("getChunk", data, preset);
    }
    VstInt32 setChunk(void* data, VstInt32 size, bool preset) override {
        return log.note("setChunk", data, size, preset);
    }

    call_log& log;
};

struct opcode_case {
    VstInt32 opcode;
    std::string calls;
    VstIntPtr result = 0;
    VstInt32 index = 3;
    VstIntPtr value = 2;
};

void expect_dispatch(const std::vector<opcode_case>& rows, call_log& log, AEffect* record) {
    for (const opcode_case& row : rows) {
        log.calls.clear();
        EXPECT_EQ(record->dispatcher(record, row.opcode, row.index, row.value, host_data, 0.5f),
                  row.result)
            << "opcode " << row.opcode << " value " << row.value;
        EXPECT_EQ(log.calls, row.calls) << "opcode " << row.opcode << " value " << row.value;
    }
}

TEST(AudioEffect, OpcodesReachTheirOperations) {
    call_log log;
    recording_effect effect{log};
    expect_dispatch({{effOpen, "open()"},
                     {effSetProgram, "setProgram(2)"},
                     {effSetProgram, "setProgram(3)", 0, 0, 3},
                     {effSetProgram, "", 0, 0, 4},
                     {effSetProgram, "setProgram(-1)", 0, 0, -1},
                     {effGetProgram, "getProgram()", 7},
                     {effSetProgramName, "setProgramName(ptr)"},
                     {effGetProgramName, "getProgramName(ptr)"},
                     {effGetParamLabel, "getParameterLabel(3, ptr)"},
                     {effGetParamDisplay, "getParameterDisplay(3, ptr)"},
                     {effGetParamName, "getParameterName(3, ptr)"},
                     {effSetSampleRate, "setSampleRate(0.5)"},
                     {effSetBlockSize, "setBlockSize(2)"},
                     {effMainsChanged, "resume()", 0, 0, 1},
                     {effMainsChanged, "suspend()", 0, 0, 0},
                     {effGetChunk, "getChunk(ptr, true)", 7},
                     {effGetChunk, "getChunk(ptr, false)", 7, 0},
                     {effSetChunk, "setChunk(ptr, 2, true)", 7},
                     {effSetChunk, "setChunk(ptr, 2, false)", 7, 0},
                     {__effIdentifyDeprecated, "", 0x4E764566}},
                    log, effect.getAeffect());
}

TEST(AudioEffect, EditorOpcodesReachTheEditorOrNobody) {
    call_log log;
    recording_effect effect{log};
    AEffect* record = effect.getAeffect();
    expect_dispatch(
        {{effEditGetRect, ""}, {effEditOpen, ""}, {effEditClose, ""}, {effEditIdle, ""}}, log,
        record);
    effect.setEditor(new recording_editor{log});
    expect_dispatch({{effEditGetRect, "getRect(ptr)", 1},
                     {effEditOpen, "open(ptr)", 1},
                     {effEditClose, "close()"},
                     {effEditIdle, "idle()"}},
                    log, record);
}

TEST(AudioEffect, NumberBeyond32BitsStaysOutOfRange) {
    if (sizeof(VstIntPtr) == 4)
        GTEST_SKIP() << "every number fits";
    const auto beyond = static_cast<VstIntPtr>(std::int64_t{1} << 40);
    call_log log;
    recording_effect effect{log};
    expect_dispatch({{effSetProgram, "", 0, 0, beyond},
                     {effSetProgram, "setProgram(-2147483648)", 0, 0, -beyond},
                     {effSetBlockSize, "setBlockSize(2147483647)", 0, 0, beyond}},
                    log, effect.getAeffect());
}

TEST(AudioEffect, RecordLeadsToTheObject) {
    call_log log;
    recording_effect effect{log};
    AEffect* record = effect.getAeffect();
    auto* in = reinterpret_cast<float**>(host_data);
    auto* out = reinterpret_cast<float**>(other_data);
    record->processReplacing(record, in, out, 64);
    record->processDoubleReplacing(record, reinterpret_cast<double**>(in),
                                   reinterpret_cast<double**>(out), 65);
    record->__processDeprecated(record, in, out, 66);
    record->setParameter(record, 1, 0.25f);
    EXPECT_EQ(log.calls, "processReplacing(ptr, value, 64) processDoubleReplacing(ptr, value, 65) "
                         "__processDeprecated(ptr, value, 66) setParameter(1, 0.25)");
    EXPECT_EQ(record->getParameter(record, 3), 1.5f);
}

TEST(AudioEffect, CloseDestroysTheObjectAndItsEditor) {
    call_log log;
    auto* effect = new recording_effect{log};
    effect->setEditor(new recording_editor{log});
    AEffect* record = effect->getAeffect();
    EXPECT_EQ(record->dispatcher(record, effClose, 0, 0, nullptr, 0), 1);
    EXPECT_EQ(log.calls, "close() ~effect() ~editor()");
}

TEST(AudioEffect, FreshRecord) {
    call_log log;
    recording_effect effect{log};
    const AEffect& record = *effect.getAeffect();
    EXPECT_EQ(record.magic, 0x56737450);
    EXPECT_EQ(record.numPrograms, 4);
    EXPECT_EQ(record.numParams, 2);
    EXPECT_EQ(record.numInputs, 1);
    EXPECT_EQ(record.numOutputs, 2);
    EXPECT_EQ(record.flags, 16);
    EXPECT_EQ(record.initialDelay, 0);
    EXPECT_EQ(record.__ioRatioDeprecated, 1.0f);
    EXPECT_EQ(record.object, &effect);
    EXPECT_EQ(record.user, nullptr);
    EXPECT_EQ(record.uniqueID, 0x4E6F4566);
    EXPECT_EQ(record.version, 1);
    for (char byte : record.future)
        EXPECT_EQ(byte, 0);
    EXPECT_EQ(effect.getSampleRate(), 44100.0f);
    EXPECT_EQ(effect.getBlockSize(), 1024);
}

TEST(AudioEffect, EachFlagSetsAndClearsItsOwnBit) {
    default_effect effect;
    effect.canProcessReplacing(false);
    ASSERT_EQ(effect.getAeffect()->flags, 0);
    struct {
        void (*set)(AudioEffectX&, bool);
        VstInt32 bit;
    } const rows[] = {
        {[](AudioEffectX& e, bool on) { e.__hasClipDeprecated(on); }, 2},
        {[](AudioEffectX& e, bool on) { e.__hasVuDeprecated(on); }, 4},
        {[](AudioEffectX& e, bool on) { e.__canMonoDeprecated(on); }, 8},
        {[](AudioEffectX& e, bool on) { e.canProcessReplacing(on); }, 16},
        {[](AudioEffectX& e, bool on) { e.programsAreChunks(on); }, 32},
        {[](AudioEffectX& e, bool on) { e.isSynth(on); }, 256},
        {[](AudioEffectX& e, bool on) { e.noTail(on); }, 512},
        {[](AudioEffectX& e, bool on) { e.__wantAsyncOperationDeprecated(on); }, 1024},
        {[](AudioEffectX& e, bool on) { e.__hasExternalBufferDeprecated(on); }, 2048},
        {[](AudioEffectX& e, bool on) { e.canDoubleReplacing(on); }, 4096},
    };
    VstInt32 all = 0;
    for (const auto& row : rows) {
        row.set(effect, true);
        EXPECT_EQ(effect.getAeffect()->flags, all |= row.bit) << "bit " << row.bit;
    }
    for (const auto& row : rows) {
        row.set(effect, false);
        EXPECT_EQ(effect.getAeffect()->flags, all &= ~row.bit) << "bit " << row.bit;
    }
}

TEST(AudioEffect, EditorFlagFollowsTheEditor) {
    call_log log;
    recording_editor editor{log};
    default_effect effect;
    effect.setEditor(&editor);
    EXPECT_EQ(effect.getAeffect()->flags, effFlagsHasEditor | effFlagsCanReplacing);
    EXPECT_EQ(effect.getEditor(), &editor);
    effect.setEditor(nullptr);
    EXPECT_EQ(effect.getAeffect()->flags, effFlagsCanReplacing);
}

TEST(AudioEffect, EditorBaseKnowsItsParentWindowWhileOpen) {
    AEffEditor editor;
    ERect size;
    ERect* rect = &size;
    EXPECT_FALSE(editor.getRect(&rect));
    EXPECT_EQ(rect, nullptr);
    EXPECT_FALSE(editor.isOpen());
    EXPECT_FALSE(editor.open(host_data));
    EXPECT_TRUE(editor.isOpen());
    editor.close();
    EXPECT_FALSE(editor.isOpen());
}

TEST(AudioEffect, ParameterTexts) {
    default_effect effect;
    effect.setSampleRate(48000);
    using helper = void (AudioEffect::*)(float, char*, VstInt32);
    struct {
        helper write;
        float value;
        const char* text;
    } const rows[] = {
        {&AudioEffect::dB2string, 0.0f, "-oo"},
        {&AudioEffect::dB2string, -1.0f, "-oo"},
        {&AudioEffect::dB2string, 1.0f, "0.000000"},
        {&AudioEffect::dB2string, 0.5f, "-6.02059"},
        {&AudioEffect::Hz2string, 0.0f, "0.000000"},
        {&AudioEffect::Hz2string, 100.0f, "480.0000"},
        {&AudioEffect::ms2string, 24.0f, "0.500000"},
        {&AudioEffect::ms2string, 0.0f, "0.000000"},
        {&AudioEffect::float2string, 0.5f, "0.500000"},
    };
    for (const auto& row : rows) {
        char text[9];
        (effect.*row.write)(row.value, text, 8);
        EXPECT_STREQ(text, row.text) << row.value;
    }
}

} // namespace
