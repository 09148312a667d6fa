#include "vst/audioeffect.h"

#include "number_text/number_text.h"
#include "vst/aeffeditor.h"
#include "vst/host_argument.h"
#include "vst/host_text.h"

namespace {

constexpr VstInt32 no_unique_id = 0x4E6F4566; // "NoEf"

// The functions of the record, by which a host without C++ reaches the object.

AudioEffect* effect_of(AEffect* e) { return static_cast<AudioEffect*>(e->object); }

VstIntPtr VSTCALLBACK dispatchEffectClass(AEffect* e, VstInt32 opcode, VstInt32 index,
                                          VstIntPtr value, void* ptr, float opt) {
    AudioEffect* effect = effect_of(e);
    const VstIntPtr result = effect->dispatcher(opcode, index, value, ptr, opt);
    if (opcode != effClose)
        return result;
    delete effect; // and the record in it
    return 1;
}

void VSTCALLBACK __processClassDeprecated(AEffect* e, float** inputs, float** outputs,
                                          VstInt32 sampleFrames) {
    effect_of(e)->__processDeprecated(inputs, outputs, sampleFrames);
}

void VSTCALLBACK processClassReplacing(AEffect* e, float** inputs, float** outputs,
                                       VstInt32 sampleFrames) noexcept NONBLOCKING {
    effect_of(e)->processReplacing(inputs, outputs, sampleFrames);
}

void VSTCALLBACK processClassDoubleReplacing(AEffect* e, double** inputs, double** outputs,
                                             VstInt32 sampleFrames) {
    effect_of(e)->processDoubleReplacing(inputs, outputs, sampleFrames);
}

void VSTCALLBACK setParameterClass(AEffect* e, VstInt32 index, float value) {
    effect_of(e)->setParameter(index, value);
}

float VSTCALLBACK getParameterClass(AEffect* e, VstInt32 index) {
    return effect_of(e)->getParameter(index);
}

void clear_text(char* text) { vst_strncpy(text, "", 0); }

} // namespace

AudioEffect::AudioEffect(audioMasterCallback host, VstInt32 nbPrograms, VstInt32 nbParams)
    : audioMaster(host), numPrograms(nbPrograms), numParams(nbParams) {
    cEffect.magic = kEffectMagic;
    cEffect.dispatcher = dispatchEffectClass;
    cEffect.__processDeprecated = __processClassDeprecated;
    cEffect.setParameter = setParameterClass;
    cEffect.getParameter = getParameterClass;
    cEffect.numPrograms = numPrograms;
    cEffect.numParams = numParams;
    cEffect.numInputs = 1;
    cEffect.numOutputs = 2;
    cEffect.flags = effFlagsCanReplacing;
    cEffect.__ioRatioDeprecated = 1;
    cEffect.object = this;
    cEffect.uniqueID = no_unique_id;
    cEffect.version = 1;
    cEffect.processReplacing = processClassReplacing;
    cEffect.processDoubleReplacing = processClassDoubleReplacing;
}

AudioEffect::~AudioEffect() = default;

VstIntPtr AudioEffect::dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                                  float opt) {
    const host_pointer data{ptr};
    // A table, one row an opcode.
    // clang-format off
    switch (opcode) {
    case effOpen: open(); break;
    case effClose: close(); break;
    case effSetProgram: if (value < numPrograms) setProgram(to_int32(value)); break;
    case effGetProgram: return getProgram();
    case effSetProgramName: setProgramName(data); break;
    case effGetProgramName: getProgramName(data); break;
    case effGetParamLabel: getParameterLabel(index, data); break;
    case effGetParamDisplay: getParameterDisplay(index, data); break;
    case effGetParamName: getParameterName(index, data); break;
    case effSetSampleRate: setSampleRate(opt); break;
    case effSetBlockSize: setBlockSize(to_int32(value)); break;
    case effMainsChanged: value == 0 ? suspend() : resume(); break;
    case effEditGetRect: return editor && editor->getRect(data);
    case effEditOpen: return editor && editor->open(ptr);
    case effEditClose: if (editor) editor->close(); break;
    case effEditIdle: if (editor) editor->idle(); break;
    case __effIdentifyDeprecated: return kEffectIdentify;
    case effGetChunk: return getChunk(data, index != 0);
    case effSetChunk: return setChunk(ptr, to_int32(value), index != 0);
    default: break;
    }
    // clang-format on
    return 0;
}

void AudioEffect::setParameterAutomated(VstInt32 index, float value) {
    setParameter(index, value);
    callHost(audioMasterAutomate, index, 0, nullptr, value);
}

void AudioEffect::getProgramName(char* name) { clear_text(name); }
void AudioEffect::getParameterLabel(VstInt32, char* label) { clear_text(label); }
void AudioEffect::getParameterDisplay(VstInt32, char* text) { clear_text(text); }
void AudioEffect::getParameterName(VstInt32, char* text) { clear_text(text); }

void AudioEffect::setEditor(AEffEditor* newEditor) {
    editor.reset(newEditor);
    setFlag(effFlagsHasEditor, editor != nullptr);
}

VstInt32 AudioEffect::getMasterVersion() {
    const VstInt32 version = to_int32(callHost(audioMasterVersion));
    return version == 0 ? 1 : version;
}

VstInt32 AudioEffect::getCurrentUniqueId() { return to_int32(callHost(audioMasterCurrentId)); }

void AudioEffect::masterIdle() { callHost(audioMasterIdle); }

void AudioEffect::dB2string(float gain, char* text, VstInt32 maxLen) {
    vst_strncpy(text, decibel_text(gain), maxLen);
}

void AudioEffect::Hz2string(float nbSamples, char* text, VstInt32 maxLen) {
    float2string(nbSamples == 0 ? 0 : sampleRate / nbSamples, text, maxLen);
}

void AudioEffect::ms2string(float nbSamples, char* text, VstInt32 maxLen) {
    const double rate = sampleRate;
    float2string(static_cast<float>(nbSamples * 1000.0 / rate), text, maxLen);
}

void AudioEffect::float2string(float value, char* text, VstInt32 maxLen) {
    vst_strncpy(text, number_text(value), maxLen);
}

void AudioEffect::int2string(VstInt32 value, char* text, VstInt32 maxLen) {
    vst_strncpy(text, integer_text(value), maxLen);
}

// The one pair of requests whose reply is 0 for yes.
bool AudioEffect::__isInputConnectedDeprecated(VstInt32 input) {
    return callHost(__audioMasterPinConnectedDeprecated, input, 0) == 0;
}

bool AudioEffect::__isOutputConnectedDeprecated(VstInt32 output) {
    return callHost(__audioMasterPinConnectedDeprecated, output, 1) == 0;
}

VstIntPtr AudioEffect::callHost(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                                float opt) {
    return audioMaster ? audioMaster(&cEffect, opcode, index, value, ptr, opt) : 0;
}

void AudioEffect::setFlag(VstInt32 flag, bool state) {
    cEffect.flags = state ? cEffect.flags | flag : cEffect.flags & ~flag;
}
