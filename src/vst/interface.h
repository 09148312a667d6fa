#pragma once
/// The VST 2.4 binary interface: the records, opcodes and constants that a plug-in and its host
/// exchange, under their published names and numbers. Nothing here knows an instrument, so the
/// command and the tests, which stand on the host's side, include this header and no other.

#include <cstddef>
#include <cstdint>

using VstInt16 = std::int16_t;
using VstInt32 = std::int32_t;
using VstIntPtr = std::intptr_t;

#if defined(__i386__)
#define VSTCALLBACK __attribute__((cdecl))
#else
#define VSTCALLBACK
#endif

struct AEffect;

using audioMasterCallback = VstIntPtr(VSTCALLBACK*)(AEffect* effect, VstInt32 opcode,
                                                    VstInt32 index, VstIntPtr value, void* ptr,
                                                    float opt);
using AEffectDispatcherProc = VstIntPtr(VSTCALLBACK*)(AEffect* effect, VstInt32 opcode,
                                                      VstInt32 index, VstIntPtr value, void* ptr,
                                                      float opt);
using AEffectProcessProc = void(VSTCALLBACK*)(AEffect* effect, float** inputs, float** outputs,
                                              VstInt32 sampleFrames);
using AEffectProcessDoubleProc = void(VSTCALLBACK*)(AEffect* effect, double** inputs,
                                                    double** outputs, VstInt32 sampleFrames);
using AEffectSetParameterProc = void(VSTCALLBACK*)(AEffect* effect, VstInt32 index,
                                                   float parameter);
using AEffectGetParameterProc = float(VSTCALLBACK*)(AEffect* effect, VstInt32 index);

/// The library's one export, "main" (other makers' libraries may call it "VSTPluginMain").
using VstPluginMainProc = AEffect*(VSTCALLBACK*)(audioMasterCallback audioMaster);

constexpr VstInt32 kEffectMagic = 0x56737450; ///< "VstP"

struct AEffect {
    VstInt32 magic;
    AEffectDispatcherProc dispatcher;
    AEffectProcessProc __processDeprecated;
    AEffectSetParameterProc setParameter;
    AEffectGetParameterProc getParameter;
    VstInt32 numPrograms;
    VstInt32 numParams;
    VstInt32 numInputs;
    VstInt32 numOutputs;
    VstInt32 flags; ///< VstAEffectFlags
    VstIntPtr resvd1;
    VstIntPtr resvd2;
    VstInt32 initialDelay;
    VstInt32 __realQualitiesDeprecated;
    VstInt32 __offQualitiesDeprecated;
    float __ioRatioDeprecated;
    void* object;
    void* user;
    VstInt32 uniqueID;
    VstInt32 version;
    AEffectProcessProc processReplacing;
    AEffectProcessDoubleProc processDoubleReplacing;
    char future[56];
};

enum VstAEffectFlags : VstInt32 {
    effFlagsHasEditor = 1 << 0,
    __effFlagsHasClipDeprecated = 1 << 1,
    __effFlagsHasVuDeprecated = 1 << 2,
    __effFlagsCanMonoDeprecated = 1 << 3,
    effFlagsCanReplacing = 1 << 4,
    effFlagsProgramChunks = 1 << 5,
    effFlagsIsSynth = 1 << 8,
    effFlagsNoSoundInStop = 1 << 9,
    __effFlagsExtIsAsyncDeprecated = 1 << 10,
    __effFlagsExtHasBufferDeprecated = 1 << 11,
    effFlagsCanDoubleReplacing = 1 << 12,
};

/// What a host asks of the plug-in.
enum AEffectOpcodes : VstInt32 {
    effOpen = 0,
    effClose = 1,
    effSetProgram = 2,
    effGetProgram = 3,
    effSetProgramName = 4,
    effGetProgramName = 5,
    effGetParamLabel = 6,
    effGetParamDisplay = 7,
    effGetParamName = 8,
    effSetSampleRate = 10,
    effSetBlockSize = 11,
    effMainsChanged = 12,
    effEditGetRect = 13,
    effEditOpen = 14,
    effEditClose = 15,
    effEditIdle = 19,
    __effIdentifyDeprecated = 22,
    effGetChunk = 23,
    effSetChunk = 24,
    effProcessEvents = 25,
    effCanBeAutomated = 26,
    effString2Parameter = 27,
    effGetProgramNameIndexed = 29,
    effGetInputProperties = 33,
    effGetOutputProperties = 34,
    effGetPlugCategory = 35,
    effOfflineNotify = 38,
    effOfflinePrepare = 39,
    effOfflineRun = 40,
    effProcessVarIo = 41,
    effSetSpeakerArrangement = 42,
    effSetBypass = 44,
    effGetEffectName = 45,
    effGetVendorString = 47,
    effGetProductString = 48,
    effGetVendorVersion = 49,
    effVendorSpecific = 50,
    effCanDo = 51,
    effGetTailSize = 52,
    effGetParameterProperties = 56,
    effGetVstVersion = 58,
    effEditKeyDown = 59,
    effEditKeyUp = 60,
    effSetEditKnobMode = 61,
    effGetMidiProgramName = 62,
    effGetCurrentMidiProgram = 63,
    effGetMidiProgramCategory = 64,
    effHasMidiProgramsChanged = 65,
    effGetMidiKeyName = 66,
    effBeginSetProgram = 67,
    effEndSetProgram = 68,
    effGetSpeakerArrangement = 69,
    effShellGetNextPlugin = 70,
    effStartProcess = 71,
    effStopProcess = 72,
    effSetTotalSampleToProcess = 73,
    effSetPanLaw = 74,
    effBeginLoadBank = 75,
    effBeginLoadProgram = 76,
    effSetProcessPrecision = 77,
    effGetNumMidiInputChannels = 78,
    effGetNumMidiOutputChannels = 79,
};

constexpr VstIntPtr kEffectIdentify = 0x4E764566; ///< "NvEf", the answer to opcode 22

/// Index and value of the vendor-specific call by which hosts tell an editor's scale, in `opt`: 2
/// is twice the size. An editor that follows it answers 1.
constexpr VstInt32 kEditorScaleIndex = 0x50726553;  ///< "PreS"
constexpr VstIntPtr kEditorScaleValue = 0x41654373; ///< "AeCs"

/// What the plug-in asks of its host.
enum AudioMasterOpcodes : VstInt32 {
    audioMasterAutomate = 0,
    audioMasterVersion = 1,
    audioMasterCurrentId = 2,
    audioMasterIdle = 3,
    __audioMasterPinConnectedDeprecated = 4,
    __audioMasterWantMidiDeprecated = 6,
    audioMasterGetTime = 7,
    audioMasterProcessEvents = 8,
    __audioMasterTempoAtDeprecated = 10,
    __audioMasterGetNumAutomatableParametersDeprecated = 11,
    __audioMasterGetParameterQuantizationDeprecated = 12,
    audioMasterIOChanged = 13,
    __audioMasterNeedIdleDeprecated = 14,
    audioMasterSizeWindow = 15,
    audioMasterGetSampleRate = 16,
    audioMasterGetBlockSize = 17,
    audioMasterGetInputLatency = 18,
    audioMasterGetOutputLatency = 19,
    __audioMasterGetPreviousPlugDeprecated = 20,
    __audioMasterGetNextPlugDeprecated = 21,
    __audioMasterWillReplaceOrAccumulateDeprecated = 22,
    audioMasterGetCurrentProcessLevel = 23,
    audioMasterGetAutomationState = 24,
    audioMasterOfflineStart = 25,
    audioMasterOfflineRead = 26,
    audioMasterOfflineWrite = 27,
    audioMasterOfflineGetCurrentPass = 28,
    audioMasterOfflineGetCurrentMetaPass = 29,
    __audioMasterSetOutputSampleRateDeprecated = 30,
    __audioMasterGetOutputSpeakerArrangementDeprecated = 31,
    audioMasterGetVendorString = 32,
    audioMasterGetProductString = 33,
    audioMasterGetVendorVersion = 34,
    audioMasterVendorSpecific = 35,
    audioMasterCanDo = 37,
    audioMasterGetLanguage = 38,
    __audioMasterOpenWindowDeprecated = 39,
    __audioMasterCloseWindowDeprecated = 40,
    audioMasterGetDirectory = 41,
    audioMasterUpdateDisplay = 42,
    audioMasterBeginEdit = 43,
    audioMasterEndEdit = 44,
    audioMasterOpenFileSelector = 45,
    audioMasterCloseFileSelector = 46,
    __audioMasterGetChunkFileDeprecated = 48,
    __audioMasterGetInputSpeakerArrangementDeprecated = 49,
};

constexpr VstInt32 kVstVersion = 2400;

/// Bytes, with the terminating zero, that hosts provide for a text.
enum VstStringConstants : std::size_t {
    kVstMaxProgNameLen = 24,
    kVstMaxParamStrLen = 8, ///< the published figure; the longest parameter name here needs 11
    kVstMaxVendorStrLen = 64,
    kVstMaxProductStrLen = 64,
    kVstMaxEffectNameLen = 32,
};

enum VstPlugCategory : VstInt32 {
    kPlugCategUnknown = 0,
    kPlugCategEffect = 1,
    kPlugCategSynth = 2
};

enum VstEventTypes : VstInt32 { kVstMidiType = 1, kVstSysExType = 6 };

struct VstEvent {
    VstInt32 type; ///< VstEventTypes
    VstInt32 byteSize;
    VstInt32 deltaFrames; ///< offset into the coming block
    VstInt32 flags;
    char data[16];
};

/// The array goes on past its two entries: `numEvents` of them follow the header.
struct VstEvents {
    VstInt32 numEvents;
    VstIntPtr reserved;
    VstEvent* events[2];
};

struct VstMidiEvent {
    VstInt32 type; ///< kVstMidiType
    VstInt32 byteSize;
    VstInt32 deltaFrames;
    VstInt32 flags; ///< 1: played live
    VstInt32 noteLength;
    VstInt32 noteOffset;
    char midiData[4]; ///< status, two data bytes, 0
    char detune;
    char noteOffVelocity;
    char reserved1;
    char reserved2;
};

struct VstMidiSysexEvent {
    VstInt32 type; ///< kVstSysExType
    VstInt32 byteSize;
    VstInt32 deltaFrames;
    VstInt32 flags;
    VstInt32 dumpBytes;
    VstIntPtr resvd1;
    char* sysexDump; ///< 0xF0 ... 0xF7
    VstIntPtr resvd2;
};

struct VstTimeInfo {
    double samplePos;
    double sampleRate;
    double nanoSeconds;
    double ppqPos;
    double tempo;
    double barStartPos;
    double cycleStartPos;
    double cycleEndPos;
    VstInt32 timeSigNumerator;
    VstInt32 timeSigDenominator;
    VstInt32 smpteOffset;
    VstInt32 smpteFrameRate;
    VstInt32 samplesToNextClock;
    VstInt32 flags; ///< VstTimeInfoFlags
};

/// Of the published ones, those in use.
enum VstTimeInfoFlags : VstInt32 {
    kVstTransportChanged = 1 << 0,
    kVstTransportPlaying = 1 << 1,
    kVstPpqPosValid = 1 << 9,
    kVstTempoValid = 1 << 10,
};

struct ERect {
    VstInt16 top;
    VstInt16 left;
    VstInt16 bottom;
    VstInt16 right;
};

struct VstKeyCode {
    VstInt32 character;
    unsigned char virt;
    unsigned char modifier;
};

struct VstFileType {
    char name[128];
    char macType[8];
    char dosType[8];
    char unixType[8];
    char mimeType1[128];
    char mimeType2[128];
};

enum VstFileSelectCommand : VstInt32 {
    kVstFileLoad = 0,
    kVstFileSave = 1,
    kVstMultipleFilesLoad = 2,
    kVstDirectorySelect = 3,
};

constexpr VstInt32 kVstFileType = 0;

struct VstFileSelect {
    VstInt32 command; ///< VstFileSelectCommand
    VstInt32 type;    ///< kVstFileType
    VstInt32 macCreator;
    VstInt32 nbFileTypes;
    VstFileType* fileTypes;
    char title[1024];
    char* initialPath;
    char* returnPath;
    VstInt32 sizeReturnPath;
    char** returnMultiplePaths;
    VstInt32 nbReturnPath;
    VstIntPtr reserved;
    char future[116];
};

struct VstPinProperties {
    char label[64];
    VstInt32 flags;
    VstInt32 arrangementType;
    char shortLabel[8];
    char future[48];
};

struct VstParameterProperties {
    float stepFloat;
    float smallStepFloat;
    float largeStepFloat;
    char label[64];
    VstInt32 flags;
    VstInt32 minInteger;
    VstInt32 maxInteger;
    VstInt32 stepInteger;
    VstInt32 largeStepInteger;
    char shortLabel[8];
    VstInt16 displayIndex;
    VstInt16 category;
    VstInt16 numParametersInCategory;
    VstInt16 reserved;
    char categoryLabel[24];
    char future[16];
};

struct VstSpeakerProperties {
    float azimuth;
    float elevation;
    float radius;
    float reserved;
    char name[64];
    VstInt32 type;
    char future[28];
};

/// The array goes on past its eight entries: `numChannels` of them follow the header.
struct VstSpeakerArrangement {
    VstInt32 type;
    VstInt32 numChannels;
    VstSpeakerProperties speakers[8];
};

struct MidiProgramName {
    VstInt32 thisProgramIndex;
    char name[64];
    char midiProgram;
    char midiBankMsb;
    char midiBankLsb;
    char reserved;
    VstInt32 parentCategoryIndex;
    VstInt32 flags;
};

struct MidiProgramCategory {
    VstInt32 thisCategoryIndex;
    char name[64];
    VstInt32 parentCategoryIndex;
    VstInt32 flags;
};

struct MidiKeyName {
    VstInt32 thisProgramIndex;
    VstInt32 thisKeyNumber;
    char keyName[64];
    VstInt32 reserved;
    VstInt32 flags;
};

struct VstPatchChunkInfo {
    VstInt32 version;
    VstInt32 pluginUniqueID;
    VstInt32 pluginVersion;
    VstInt32 numElements;
    char future[48];
};

struct VstOfflineTask;
struct VstAudioFile;
struct VstVariableIo;

/// A record that crosses the boundary has the published size, whatever the compiler does.
template <typename Record, std::size_t bytes32, std::size_t bytes64 = bytes32>
// Some have one size in both widths. NOLINTNEXTLINE(bugprone-branch-clone)
constexpr bool has_published_size = sizeof(Record) == (sizeof(void*) == 4 ? bytes32 : bytes64);

static_assert(has_published_size<AEffect, 144, 192>);
static_assert(has_published_size<VstEvent, 32>);
static_assert(has_published_size<VstEvents, 16, 32>);
static_assert(has_published_size<VstMidiEvent, 32>);
static_assert(has_published_size<VstMidiSysexEvent, 32, 48>);
static_assert(has_published_size<VstTimeInfo, 88>);
static_assert(has_published_size<ERect, 8>);
static_assert(has_published_size<VstKeyCode, 8>);
static_assert(has_published_size<VstFileType, 408>);
static_assert(has_published_size<VstFileSelect, 1184, 1216>);
static_assert(has_published_size<VstPinProperties, 128>);
static_assert(has_published_size<VstParameterProperties, 152>);
static_assert(has_published_size<VstSpeakerProperties, 112>);
static_assert(has_published_size<VstSpeakerArrangement, 904>);
static_assert(has_published_size<MidiProgramName, 80>);
static_assert(has_published_size<MidiProgramCategory, 76>);
static_assert(has_published_size<MidiKeyName, 80>);
static_assert(has_published_size<VstPatchChunkInfo, 64>);
