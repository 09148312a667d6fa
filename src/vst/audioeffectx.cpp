#include "vst/audioeffectx.h"

#include "vst/aeffeditor.h"
#include "vst/host_argument.h"
#include "vst/speaker_arrangement.h"

#include <cmath>
#include <cstdint>

namespace {

/// The host packs a key into the numbers of an opcode, its modifiers into the float. A float that
/// 16 bits cannot hold has none.
VstKeyCode key_of(VstInt32 index, VstIntPtr value, float opt) {
    const float whole = std::trunc(opt);
    const VstInt32 modifier =
        whole >= INT16_MIN && whole <= INT16_MAX ? static_cast<VstInt32>(whole) : 0;
    return {.character = index,
            .virt = static_cast<unsigned char>(value & 0xFF),
            .modifier = static_cast<unsigned char>(modifier & 0xFF)};
}

using key_operation = bool (AEffEditor::*)(VstKeyCode&);

bool send_key(const std::unique_ptr<AEffEditor>& editor, key_operation operation, VstKeyCode key) {
    return editor && (editor.get()->*operation)(key);
}

} // namespace

VstIntPtr AudioEffectX::dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                                   float opt) {
    const host_pointer data{ptr};
    const VstInt32 number = to_int32(value);
    // A table, one row an opcode.
    // clang-format off
    switch (opcode) {
    case effProcessEvents: return processEvents(data);
    case effCanBeAutomated: return canParameterBeAutomated(index);
    case effString2Parameter: return string2parameter(index, data);
    case effGetProgramNameIndexed: return getProgramNameIndexed(number, index, data);
    case effGetInputProperties: return getInputProperties(index, data);
    case effGetOutputProperties: return getOutputProperties(index, data);
    case effGetPlugCategory: return getPlugCategory();
    case effOfflineNotify: return offlineNotify(data, number, index != 0);
    case effOfflinePrepare: return offlinePrepare(data, number);
    case effOfflineRun: return offlineRun(data, number);
    case effProcessVarIo: return processVariableIo(data);
    case effSetSpeakerArrangement: return setSpeakerArrangement(to_pointer(value), data);
    case effSetBypass: return setBypass(value != 0);
    case effGetEffectName: return getEffectName(data);
    case effGetVendorString: return getVendorString(data);
    case effGetProductString: return getProductString(data);
    case effGetVendorVersion: return getVendorVersion();
    case effVendorSpecific: return vendorSpecific(index, value, ptr, opt);
    case effCanDo: return canDo(data);
    case effGetTailSize: return getGetTailSize();
    case effGetParameterProperties: return getParameterProperties(index, data);
    case effGetVstVersion: return getVstVersion();
    case effEditKeyDown: return send_key(editor, &AEffEditor::onKeyDown, key_of(index, value, opt));
    case effEditKeyUp: return send_key(editor, &AEffEditor::onKeyUp, key_of(index, value, opt));
    case effSetEditKnobMode: return editor && editor->setKnobMode(number);
    case effGetMidiProgramName: return getMidiProgramName(index, data);
    case effGetCurrentMidiProgram: return getCurrentMidiProgram(index, data);
    case effGetMidiProgramCategory: return getMidiProgramCategory(index, data);
    case effHasMidiProgramsChanged: return hasMidiProgramsChanged(index);
    case effGetMidiKeyName: return getMidiKeyName(index, data);
    case effBeginSetProgram: return beginSetProgram();
    case effEndSetProgram: return endSetProgram();
    case effGetSpeakerArrangement: return getSpeakerArrangement(to_pointer(value), data);
    case effShellGetNextPlugin: return getNextShellPlugin(data);
    case effStartProcess: return startProcess();
    case effStopProcess: return stopProcess();
    case effSetTotalSampleToProcess: return setTotalSampleToProcess(number);
    case effSetPanLaw: return setPanLaw(number, opt);
    case effBeginLoadBank: return beginLoadBank(data);
    case effBeginLoadProgram: return beginLoadProgram(data);
    case effSetProcessPrecision: return setProcessPrecision(number);
    case effGetNumMidiInputChannels: return getNumMidiInputChannels();
    case effGetNumMidiOutputChannels: return getNumMidiOutputChannels();
    default: return AudioEffect::dispatcher(opcode, index, value, ptr, opt);
    }
    // clang-format on
}

void AudioEffectX::resume() {
    char midi_events[] = "receiveVstMidiEvent"; // the interface asks in a writable text
    if ((cEffect.flags & effFlagsIsSynth) != 0 || canDo(midi_events) == 1)
        __wantEventsDeprecated(1);
}

bool AudioEffectX::getSpeakerArrangement(VstSpeakerArrangement** in, VstSpeakerArrangement** out) {
    for (VstSpeakerArrangement** arrangement : {in, out})
        if (arrangement != nullptr)
            *arrangement = nullptr;
    return false;
}

VstInt32 AudioEffectX::getPlugCategory() {
    return (cEffect.flags & effFlagsIsSynth) != 0 ? kPlugCategSynth : kPlugCategUnknown;
}

void AudioEffectX::__setBlockSizeAndSampleRateDeprecated(VstInt32 nbFrames, float rate) {
    blockSize = nbFrames;
    sampleRate = rate;
}

bool AudioEffectX::allocateArrangement(VstSpeakerArrangement** arrangement, VstInt32 nbChannels) {
    return speaker_arrangement_allocate(arrangement, nbChannels);
}

bool AudioEffectX::deallocateArrangement(VstSpeakerArrangement** arrangement) {
    return speaker_arrangement_deallocate(arrangement);
}

bool AudioEffectX::copySpeaker(VstSpeakerProperties* to, VstSpeakerProperties* from) {
    return speaker_copy(to, from);
}

bool AudioEffectX::matchArrangement(VstSpeakerArrangement** to, VstSpeakerArrangement* from) {
    return speaker_arrangement_match(to, from);
}
