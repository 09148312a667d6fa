#pragma once
/// The effect as VST 2.4 knows it: opcodes 25 to 79 and the requests to the host that came with
/// them. An operation that its plug-in does not override has nothing to offer: it answers 0 or
/// false and writes nothing, unless stated. Threads are as in vst/audioeffect.h.

#include "vst/audioeffect.h"

class AudioEffectX : public AudioEffect {
public:
    using AudioEffect::AudioEffect;

    VstIntPtr dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                         float opt) override;
    /// Old hosts send MIDI events only to those who ask each time: an instrument does, and what
    /// says that it can do "receiveVstMidiEvent".
    void resume() override;

    virtual bool canParameterBeAutomated(VstInt32) { return true; }
    virtual bool string2parameter(VstInt32, char*) { return false; }
    virtual bool getParameterProperties(VstInt32, VstParameterProperties*) { return false; }
    virtual bool beginEdit(VstInt32 index); ///< tells the host that the user took a control
    virtual bool endEdit(VstInt32 index);   ///< and let it go
    virtual bool getProgramNameIndexed(VstInt32 /*category*/, VstInt32 /*index*/, char*) {
        return false;
    }
    virtual bool beginSetProgram() { return false; }
    virtual bool endSetProgram() { return false; }
    virtual VstInt32 beginLoadBank(VstPatchChunkInfo*) { return 0; }
    virtual VstInt32 beginLoadProgram(VstPatchChunkInfo*) { return 0; }

    virtual bool ioChanged();
    virtual float updateSampleRate();   ///< takes the host's when it knows one; returns what holds
    virtual VstInt32 updateBlockSize(); ///< likewise
    virtual VstInt32 getInputLatency();
    virtual VstInt32 getOutputLatency();
    virtual bool getInputProperties(VstInt32, VstPinProperties*) { return false; }
    virtual bool getOutputProperties(VstInt32, VstPinProperties*) { return false; }
    virtual bool setSpeakerArrangement(VstSpeakerArrangement* /*in*/,
                                       VstSpeakerArrangement* /*out*/) {
        return false;
    }
    /// Stores the addresses of the plug-in's arrangements; by default null.
    virtual bool getSpeakerArrangement(VstSpeakerArrangement** in, VstSpeakerArrangement** out);
    virtual bool setBypass(bool) { return false; }
    virtual bool setPanLaw(VstInt32 /*type*/, float /*law*/) { return false; }
    virtual bool setProcessPrecision(VstInt32) { return false; }
    virtual VstInt32 getNumMidiInputChannels() { return 0; }
    virtual VstInt32 getNumMidiOutputChannels() { return 0; }

    /// `filter` masks the wanted fields. The record is the host's, until the block ends.
    virtual VstTimeInfo* getTimeInfo(VstInt32 filter);
    virtual VstInt32 getCurrentProcessLevel();
    virtual VstInt32 getAutomationState();
    virtual VstInt32 processEvents(VstEvents*) noexcept NONBLOCKING { return 0; }
    bool sendVstEventsToHost(VstEvents* events);
    virtual VstInt32 startProcess() { return 0; }
    virtual VstInt32 stopProcess() { return 0; }
    virtual bool processVariableIo(VstVariableIo*) { return false; }
    virtual VstInt32 setTotalSampleToProcess(VstInt32 nbFrames) { return nbFrames; }

    virtual bool getHostVendorString(char* text);
    virtual bool getHostProductString(char* text);
    virtual VstInt32 getHostVendorVersion();
    virtual VstIntPtr hostVendorSpecific(VstInt32 index, VstIntPtr value, void* ptr, float opt);
    virtual bool canHostDo(const char* text); ///< true for a no too: any reply but "don't know"
    virtual VstInt32 getHostLanguage();

    virtual void isSynth(bool state = true) { setFlag(effFlagsIsSynth, state); }
    virtual void noTail(bool state = true) { setFlag(effFlagsNoSoundInStop, state); }
    virtual VstInt32 getGetTailSize() { return 0; }
    virtual void* getDirectory(); ///< of the plug-in's file; the form is the system's
    virtual bool getEffectName(char*) { return false; }
    virtual bool getVendorString(char*) { return false; }
    virtual bool getProductString(char*) { return false; }
    virtual VstInt32 getVendorVersion() { return 0; }
    virtual VstIntPtr vendorSpecific(VstInt32, VstIntPtr, void*, float) { return 0; }
    virtual VstInt32 canDo(char*) { return 0; } ///< 1 yes, -1 no, 0 don't know
    virtual VstInt32 getVstVersion() { return kVstVersion; }
    virtual VstInt32 getPlugCategory(); ///< VstPlugCategory; by default from the instrument flag

    virtual VstInt32 getMidiProgramName(VstInt32, MidiProgramName*) { return 0; }
    virtual VstInt32 getCurrentMidiProgram(VstInt32, MidiProgramName*) { return -1; } ///< -1: none
    virtual VstInt32 getMidiProgramCategory(VstInt32, MidiProgramCategory*) { return 0; }
    virtual bool hasMidiProgramsChanged(VstInt32) { return false; }
    virtual bool getMidiKeyName(VstInt32, MidiKeyName*) { return false; }

    virtual bool updateDisplay();
    virtual bool sizeWindow(VstInt32 width, VstInt32 height); ///< pixels
    virtual bool openFileSelector(VstFileSelect* fileSelect); ///< false for null
    virtual bool closeFileSelector(VstFileSelect* fileSelect);
    virtual VstInt32 getNextShellPlugin(char*) { return 0; }

    /// As vst/speaker_arrangement.h has it.
    virtual bool allocateArrangement(VstSpeakerArrangement** arrangement, VstInt32 nbChannels);
    virtual bool deallocateArrangement(VstSpeakerArrangement** arrangement);
    virtual bool copySpeaker(VstSpeakerProperties* to, VstSpeakerProperties* from);
    virtual bool matchArrangement(VstSpeakerArrangement** to, VstSpeakerArrangement* from);

    virtual bool offlineRead(VstOfflineTask* task, VstInt32 option, bool readSource = true);
    virtual bool offlineWrite(VstOfflineTask* task, VstInt32 option);
    virtual bool offlineStart(VstAudioFile* files, VstInt32 numFiles, VstInt32 numNewFiles);
    virtual bool offlineGetCurrentPass();
    virtual bool offlineGetCurrentMetaPass();
    virtual bool offlineNotify(VstAudioFile*, VstInt32 /*numFiles*/, bool /*start*/) {
        return false;
    }
    virtual bool offlinePrepare(VstOfflineTask*, VstInt32 /*count*/) { return false; }
    virtual bool offlineRun(VstOfflineTask*, VstInt32 /*count*/) { return false; }
    virtual VstInt32 offlineGetNumPasses() { return 0; }
    virtual VstInt32 offlineGetNumMetaPasses() { return 0; }

    virtual void __wantEventsDeprecated(VstInt32 filter = 1);
    virtual VstInt32 __tempoAtDeprecated(VstInt32 pos);
    virtual VstInt32 __getNumAutomatableParametersDeprecated();
    virtual VstInt32 __getParameterQuantizationDeprecated();
    virtual VstInt32 __getNumCategoriesDeprecated() { return 1; }
    virtual bool __copyProgramDeprecated(VstInt32 /*destination*/) { return false; }
    virtual bool __needIdleDeprecated();
    virtual AEffect* __getPreviousPlugDeprecated(VstInt32 input);
    virtual AEffect* __getNextPlugDeprecated(VstInt32 output);
    virtual void __inputConnectedDeprecated(VstInt32, bool) {}
    virtual void __outputConnectedDeprecated(VstInt32, bool) {}
    virtual VstInt32 __willProcessReplacingDeprecated();
    virtual void __wantAsyncOperationDeprecated(bool state = true) {
        setFlag(__effFlagsExtIsAsyncDeprecated, state);
    }
    virtual void __hasExternalBufferDeprecated(bool state = true) {
        setFlag(__effFlagsExtHasBufferDeprecated, state);
    }
    virtual VstInt32 __reportCurrentPositionDeprecated() { return 0; }
    virtual float* __reportDestinationBufferDeprecated() { return nullptr; }
    virtual void __setOutputSamplerateDeprecated(float rate);
    virtual VstSpeakerArrangement* __getInputSpeakerArrangementDeprecated();
    virtual VstSpeakerArrangement* __getOutputSpeakerArrangementDeprecated();
    virtual void* __openWindowDeprecated(void* window);
    virtual bool __closeWindowDeprecated(void* window);
    virtual void __setBlockSizeAndSampleRateDeprecated(VstInt32 nbFrames, float rate);
    virtual bool __getErrorTextDeprecated(char*) { return false; }
    virtual void* __getIconDeprecated() { return nullptr; }
    virtual bool __setViewPositionDeprecated(VstInt32, VstInt32) { return false; }
    virtual VstInt32 __fxIdleDeprecated() { return 0; }
    virtual bool __keysRequiredDeprecated() { return false; }
    virtual bool __getChunkFileDeprecated(void* path); ///< false for null
};
