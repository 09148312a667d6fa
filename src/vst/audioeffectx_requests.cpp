#include "vst/audioeffectx.h"

#include "vst/host_argument.h"

// What the effect asks of its host, an operation a request.

bool AudioEffectX::beginEdit(VstInt32 index) { return callHost(audioMasterBeginEdit, index) != 0; }
bool AudioEffectX::endEdit(VstInt32 index) { return callHost(audioMasterEndEdit, index) != 0; }

bool AudioEffectX::ioChanged() { return callHost(audioMasterIOChanged) != 0; }
float AudioEffectX::updateSampleRate() {
    const VstIntPtr rate = callHost(audioMasterGetSampleRate);
    if (rate > 0)
        sampleRate = static_cast<float>(rate);
    return sampleRate;
}
VstInt32 AudioEffectX::updateBlockSize() {
    const VstIntPtr nb_frames = callHost(audioMasterGetBlockSize);
    if (nb_frames > 0)
        blockSize = to_int32(nb_frames);
    return blockSize;
}
VstInt32 AudioEffectX::getInputLatency() { return to_int32(callHost(audioMasterGetInputLatency)); }
VstInt32 AudioEffectX::getOutputLatency() {
    return to_int32(callHost(audioMasterGetOutputLatency));
}

VstTimeInfo* AudioEffectX::getTimeInfo(VstInt32 filter) {
    return to_pointer(callHost(audioMasterGetTime, 0, filter));
}
VstInt32 AudioEffectX::getCurrentProcessLevel() {
    return to_int32(callHost(audioMasterGetCurrentProcessLevel));
}
VstInt32 AudioEffectX::getAutomationState() {
    return to_int32(callHost(audioMasterGetAutomationState));
}
bool AudioEffectX::sendVstEventsToHost(VstEvents* events) {
    return callHost(audioMasterProcessEvents, 0, 0, events) == 1;
}

bool AudioEffectX::getHostVendorString(char* text) {
    return callHost(audioMasterGetVendorString, 0, 0, text) != 0;
}
bool AudioEffectX::getHostProductString(char* text) {
    return callHost(audioMasterGetProductString, 0, 0, text) != 0;
}
VstInt32 AudioEffectX::getHostVendorVersion() {
    return to_int32(callHost(audioMasterGetVendorVersion));
}
VstIntPtr AudioEffectX::hostVendorSpecific(VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    return callHost(audioMasterVendorSpecific, index, value, ptr, opt);
}
bool AudioEffectX::canHostDo(const char* text) {
    return callHost(audioMasterCanDo, 0, 0, const_cast<char*>(text)) != 0;
}
VstInt32 AudioEffectX::getHostLanguage() { return to_int32(callHost(audioMasterGetLanguage)); }
void* AudioEffectX::getDirectory() { return to_pointer(callHost(audioMasterGetDirectory)); }

bool AudioEffectX::updateDisplay() { return callHost(audioMasterUpdateDisplay) != 0; }
bool AudioEffectX::sizeWindow(VstInt32 width, VstInt32 height) {
    return callHost(audioMasterSizeWindow, width, height) != 0;
}
bool AudioEffectX::openFileSelector(VstFileSelect* fileSelect) {
    return fileSelect && callHost(audioMasterOpenFileSelector, 0, 0, fileSelect) != 0;
}
bool AudioEffectX::closeFileSelector(VstFileSelect* fileSelect) {
    return fileSelect && callHost(audioMasterCloseFileSelector, 0, 0, fileSelect) != 0;
}

bool AudioEffectX::offlineRead(VstOfflineTask* task, VstInt32 option, bool readSource) {
    return callHost(audioMasterOfflineRead, readSource, option, task) != 0;
}
bool AudioEffectX::offlineWrite(VstOfflineTask* task, VstInt32 option) {
    return callHost(audioMasterOfflineWrite, 0, option, task) != 0;
}
bool AudioEffectX::offlineStart(VstAudioFile* files, VstInt32 numFiles, VstInt32 numNewFiles) {
    return callHost(audioMasterOfflineStart, numNewFiles, numFiles, files) != 0;
}
bool AudioEffectX::offlineGetCurrentPass() {
    return callHost(audioMasterOfflineGetCurrentPass) != 0;
}
bool AudioEffectX::offlineGetCurrentMetaPass() {
    return callHost(audioMasterOfflineGetCurrentMetaPass) != 0;
}

void AudioEffectX::__wantEventsDeprecated(VstInt32 filter) {
    callHost(__audioMasterWantMidiDeprecated, 0, filter);
}
VstInt32 AudioEffectX::__tempoAtDeprecated(VstInt32 pos) {
    return to_int32(callHost(__audioMasterTempoAtDeprecated, 0, pos));
}
VstInt32 AudioEffectX::__getNumAutomatableParametersDeprecated() {
    return to_int32(callHost(__audioMasterGetNumAutomatableParametersDeprecated));
}
VstInt32 AudioEffectX::__getParameterQuantizationDeprecated() {
    return to_int32(callHost(__audioMasterGetParameterQuantizationDeprecated));
}
bool AudioEffectX::__needIdleDeprecated() { return callHost(__audioMasterNeedIdleDeprecated) != 0; }
AEffect* AudioEffectX::__getPreviousPlugDeprecated(VstInt32) {
    return to_pointer(callHost(__audioMasterGetPreviousPlugDeprecated));
}
AEffect* AudioEffectX::__getNextPlugDeprecated(VstInt32) {
    return to_pointer(callHost(__audioMasterGetNextPlugDeprecated));
}
VstInt32 AudioEffectX::__willProcessReplacingDeprecated() {
    return to_int32(callHost(__audioMasterWillReplaceOrAccumulateDeprecated));
}
void AudioEffectX::__setOutputSamplerateDeprecated(float rate) {
    callHost(__audioMasterSetOutputSampleRateDeprecated, 0, 0, nullptr, rate);
}
VstSpeakerArrangement* AudioEffectX::__getInputSpeakerArrangementDeprecated() {
    return to_pointer(callHost(__audioMasterGetInputSpeakerArrangementDeprecated));
}
VstSpeakerArrangement* AudioEffectX::__getOutputSpeakerArrangementDeprecated() {
    return to_pointer(callHost(__audioMasterGetOutputSpeakerArrangementDeprecated));
}
void* AudioEffectX::__openWindowDeprecated(void* window) {
    return to_pointer(callHost(__audioMasterOpenWindowDeprecated, 0, 0, window));
}
bool AudioEffectX::__closeWindowDeprecated(void* window) {
    return callHost(__audioMasterCloseWindowDeprecated, 0, 0, window) != 0;
}
bool AudioEffectX::__getChunkFileDeprecated(void* path) {
    return path && callHost(__audioMasterGetChunkFileDeprecated, 0, 0, path) != 0;
}
