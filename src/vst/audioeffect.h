#pragma once
/// The effect behind the record that a host holds, as VST 2.x knows it: the record, the first 25
/// opcodes, the requests to the host and a default for every operation. A plug-in derives from it
/// and overrides what it can do.
///
/// Operations stand in the interface's order. Hosts call processReplacing and processEvents on
/// [audio], set and read parameters on [any], and all else on [setup] and [ui]. The layer takes no
/// locks: a request reaches the host on the thread that makes it.

#include "realtime/nonblocking.h"
#include "vst/interface.h"

#include <memory>

class AEffEditor;

class AudioEffect {
public:
    /// `host` may be null: its requests are then answered by the stated default, mostly 0.
    AudioEffect(audioMasterCallback host, VstInt32 nbPrograms, VstInt32 nbParams);
    virtual ~AudioEffect(); ///< destroys the editor too
    AudioEffect(const AudioEffect&) = delete;
    AudioEffect& operator=(const AudioEffect&) = delete;

    /// Answers one opcode; 0 to those that nobody handles. Arguments reach the operations as the
    /// host gave them, so any pointer may be null.
    virtual VstIntPtr dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                                 float opt);

    virtual void open() {}
    virtual void close() {} ///< the last call before the object is destroyed
    virtual void suspend() {}
    virtual void resume() {} ///< audio is about to start

    virtual void setSampleRate(float rate) { sampleRate = rate; }          ///< Hz
    virtual void setBlockSize(VstInt32 nbFrames) { blockSize = nbFrames; } ///< at most, per call
    virtual void processReplacing(float** inputs, float** outputs,
                                  VstInt32 sampleFrames) noexcept NONBLOCKING = 0;
    virtual void processDoubleReplacing(double**, double**, VstInt32) {}

    virtual void setParameter(VstInt32, float) {}
    virtual float getParameter(VstInt32) { return 0; }
    /// Sets the parameter and tells the host, which may record it.
    virtual void setParameterAutomated(VstInt32 index, float value);

    virtual VstInt32 getProgram() { return curProgram; }
    virtual void setProgram(VstInt32 program) { curProgram = program; }
    virtual void setProgramName(char*) {}
    virtual void getProgramName(char* name);
    virtual void getParameterLabel(VstInt32 index, char* label);
    virtual void getParameterDisplay(VstInt32 index, char* text);
    virtual void getParameterName(VstInt32 index, char* text);

    /// Stores the address of the chunk, which stays the plug-in's; returns its size in bytes.
    virtual VstInt32 getChunk(void**, bool /*isPreset*/ = false) { return 0; }
    virtual VstInt32 setChunk(void*, VstInt32 /*byteSize*/, bool /*isPreset*/ = false) { return 0; }

    virtual void setUniqueID(VstInt32 id) { cEffect.uniqueID = id; }
    virtual void setNumInputs(VstInt32 nbInputs) { cEffect.numInputs = nbInputs; }
    virtual void setNumOutputs(VstInt32 nbOutputs) { cEffect.numOutputs = nbOutputs; }
    virtual void canProcessReplacing(bool state = true) { setFlag(effFlagsCanReplacing, state); }
    virtual void canDoubleReplacing(bool state = true) {
        setFlag(effFlagsCanDoubleReplacing, state);
    }
    virtual void programsAreChunks(bool state = true) { setFlag(effFlagsProgramChunks, state); }
    virtual void setInitialDelay(VstInt32 nbFrames) { cEffect.initialDelay = nbFrames; }

    /// Takes the editor into the effect's ownership, in place of the one that was set before.
    void setEditor(AEffEditor* newEditor);
    virtual AEffEditor* getEditor() { return editor.get(); }

    virtual AEffect* getAeffect() { return &cEffect; }
    virtual float getSampleRate() { return sampleRate; }
    virtual VstInt32 getBlockSize() { return blockSize; }

    virtual VstInt32 getMasterVersion(); ///< the host's VST version, at least 1
    virtual VstInt32 getCurrentUniqueId();
    virtual void masterIdle();

    /// Texts for a parameter's display, as number_text.h has them; `text` holds maxLen + 1.
    virtual void dB2string(float gain, char* text, VstInt32 maxLen);      ///< "-oo" from 0 down
    virtual void Hz2string(float nbSamples, char* text, VstInt32 maxLen); ///< of a period; 0 for 0
    virtual void ms2string(float nbSamples, char* text, VstInt32 maxLen); ///< of a duration
    virtual void float2string(float value, char* text, VstInt32 maxLen);
    virtual void int2string(VstInt32 value, char* text, VstInt32 maxLen);

    virtual void __processDeprecated(float**, float**, VstInt32) {}
    virtual float __getVuDeprecated() { return 0; }
    virtual void __hasVuDeprecated(bool state = true) { setFlag(__effFlagsHasVuDeprecated, state); }
    virtual void __hasClipDeprecated(bool state = true) {
        setFlag(__effFlagsHasClipDeprecated, state);
    }
    virtual void __canMonoDeprecated(bool state = true) {
        setFlag(__effFlagsCanMonoDeprecated, state);
    }
    virtual void __setRealtimeQualitiesDeprecated(VstInt32 qualities) {
        cEffect.__realQualitiesDeprecated = qualities;
    }
    virtual void __setOfflineQualitiesDeprecated(VstInt32 qualities) {
        cEffect.__offQualitiesDeprecated = qualities;
    }
    virtual bool __isInputConnectedDeprecated(VstInt32 input);
    virtual bool __isOutputConnectedDeprecated(VstInt32 output);

protected:
    /// Asks the host; without one the reply is 0.
    VstIntPtr callHost(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0,
                       void* ptr = nullptr, float opt = 0);

    void setFlag(VstInt32 flag, bool state);

    audioMasterCallback audioMaster;
    std::unique_ptr<AEffEditor> editor{};
    float sampleRate = 44100;  ///< Hz
    VstInt32 blockSize = 1024; ///< frames
    VstInt32 numPrograms;
    VstInt32 numParams;
    VstInt32 curProgram = 0;
    AEffect cEffect{};
};
