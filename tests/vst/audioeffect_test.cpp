#include "vst/audioeffect.h"

#include "tests/vst/recording.h"

#include <cstdint>
#include <gtest/gtest.h>

namespace {

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
};

struct opcode_case {
    VstInt32 opcode, index;
    VstIntPtr value;
    const char* calls;
    VstIntPtr result = 0;
};

void expect_calls(const opcode_case& row) {
    recording_effect effect;
    EXPECT_EQ(effect.ask(row.opcode, row.index, row.value, host_data, 0.5f), row.result)
        << "opcode " << row.opcode << " value " << row.value;
    EXPECT_EQ(effect.calls, row.calls) << "opcode " << row.opcode << " value " << row.value;
}

TEST(AudioEffect, OpcodesHandOnWhatTheyMean) {
    for (const opcode_case& row : {opcode_case{effSetProgram, 0, 3, "setProgram(3)"},
                                   {effSetProgram, 0, 4, ""}, // of four programs
                                   {effSetProgram, 0, -1, "setProgram(-1)"},
                                   {effSetSampleRate, 3, 2, "setSampleRate(0.5)"},
                                   {effSetBlockSize, 3, 2, "setBlockSize(2)"},
                                   {effMainsChanged, 0, 1, "resume()"},
                                   {effMainsChanged, 1, 0, "suspend()"},
                                   {effGetChunk, 3, 0, "getChunk(ptr, true)", 7},
                                   {effGetChunk, 0, 2, "getChunk(ptr, false)", 7},
                                   {effSetChunk, 3, 2, "setChunk(ptr, 2, true)", 7},
                                   {effSetChunk, 0, 2, "setChunk(ptr, 2, false)", 7}})
        expect_calls(row);
}

TEST(AudioEffect, NumberBeyond32BitsStaysOutOfRange) {
    if (sizeof(VstIntPtr) == 4)
        GTEST_SKIP() << "every number fits";
    const auto beyond = static_cast<VstIntPtr>(std::int64_t{1} << 40);
    for (const opcode_case& row : {opcode_case{effSetProgram, 0, beyond, ""},
                                   {effSetProgram, 0, -beyond, "setProgram(-2147483648)"},
                                   {effSetBlockSize, 0, beyond, "setBlockSize(2147483647)"}})
        expect_calls(row);
}

TEST(AudioEffect, TimesInSamplesAreShownByTheRate) {
    default_effect effect;
    effect.setSampleRate(48000);
    const struct {
        void (AudioEffect::*write)(float, char*, VstInt32);
        float nb_samples;
        const char* text;
    } rows[] = {{&AudioEffect::Hz2string, 0.0f, "0.000000"},
                {&AudioEffect::Hz2string, 100.0f, "480.0000"},
                {&AudioEffect::ms2string, 24.0f, "0.500000"}};
    for (const auto& row : rows) {
        char text[9];
        (effect.*row.write)(row.nb_samples, text, 8);
        EXPECT_STREQ(text, row.text) << row.nb_samples;
    }
}

} // namespace
