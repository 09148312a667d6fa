// An instrument without faults but for the one that TINDELWAX_TEST_FAULT names.

#include "vst/interface.h"

#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <mutex>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xmmintrin.h>

namespace {

const std::string fault = [] {
    const char* p_name = std::getenv("TINDELWAX_TEST_FAULT");
    return p_name ? p_name : "";
}();

struct instrument {
    AEffect effect{};
    audioMasterCallback host = nullptr;
    float value = 0.5f;
    float rate = 44100;
    VstIntPtr announced = 0;
    bool is_held = false;
    float phase = 0;
};

float shared_phase = 0;
std::mutex process_lock;

instrument& self(AEffect* effect) { return *static_cast<instrument*>(effect->object); }

VstIntPtr write(void* ptr, std::size_t nb_bytes, char letter, bool ends = true) {
    std::memset(ptr, letter, nb_bytes);
    if (ends)
        static_cast<char*>(ptr)[nb_bytes - 1] = 0;
    return 1;
}

VstIntPtr receive(instrument& played, const VstEvents& events) {
    for (VstInt32 i = 0; i < events.numEvents; ++i) {
        const VstEvent* event = events.events[i];
        if (event && event->type == kVstMidiType) {
            const int kind = reinterpret_cast<const VstMidiEvent*>(event)->midiData[0] & 0xF0;
            if (kind == 0x80 || kind == 0x90)
                played.is_held = kind == 0x90;
        }
    }
    return 1;
}

VstIntPtr open(void* parent) {
    if (fault == "left_window") {
        xcb_connection_t* const server = xcb_connect(nullptr, nullptr);
        xcb_create_window(server, XCB_COPY_FROM_PARENT, xcb_generate_id(server),
                          static_cast<xcb_window_t>(reinterpret_cast<std::uintptr_t>(parent)), 0, 0,
                          1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_flush(server);
    }
    return 1;
}

VstIntPtr load(instrument& loaded, const void* state) {
    if (fault != "ignored_state")
        std::memcpy(&loaded.value, state, sizeof loaded.value);
    return 1;
}

VstIntPtr save(instrument& saved, void* ptr) {
    *static_cast<void**>(ptr) = &saved.value;
    return sizeof saved.value;
}

VstIntPtr idle(instrument& edited) {
    if (fault == "gestures")
        edited.host(&edited.effect, audioMasterBeginEdit, 0, 0, nullptr, 0);
    return 1;
}

VstIntPtr tell_rect(void* ptr) {
    static ERect size{0, 0, 46, 46};
    *static_cast<ERect**>(ptr) = &size;
    return 1;
}

/// Answers what carries memory.
VstIntPtr dispatch_memory(instrument& asked, VstInt32 opcode, void* ptr) {
    // A table, one row an opcode.
    // clang-format off
    switch (opcode) {
    case effProcessEvents: return receive(asked, *static_cast<const VstEvents*>(ptr));
    case effGetEffectName: return write(ptr, 32, 'e', fault != "text_without_zero");
    case effGetProductString: return fault == "hang" ? pause() : write(ptr, 9, 'p');
    case effGetVendorString:
        return fault == "crash" ? std::raise(SIGSEGV)
                                : write(ptr, fault == "text_beyond" ? 65 : 64, 'v');
    case effCanDo: return std::strcmp(static_cast<const char*>(ptr), "receiveVstMidiEvent") == 0;
    case effEditGetRect: return tell_rect(ptr);
    case effEditOpen: return open(ptr);
    case effGetChunk: return save(asked, ptr);
    case effSetChunk: return load(asked, ptr);
    default: return 0;
    }
    // clang-format on
}

VstIntPtr VSTCALLBACK dispatch(AEffect* effect, VstInt32 opcode, VstInt32, VstIntPtr value,
                               void* ptr, float opt) {
    instrument& asked = self(effect);
    // clang-format off
    switch (opcode) {
    case effClose: delete &asked; return 1;
    case effSetSampleRate: asked.rate = opt; return 0;
    case effSetBlockSize: asked.announced = value; return 0;
    case effGetPlugCategory: return kPlugCategSynth;
    case effGetVstVersion: return kVstVersion;
    case effEditIdle: return idle(asked);
    default: return ptr ? dispatch_memory(asked, opcode, ptr) : 0;
    }
    // clang-format on
}

void VSTCALLBACK set(AEffect* effect, VstInt32, float value) {
    if ((value >= 0 && value <= 1) || fault == "odd_value")
        self(effect).value = value;
}

float VSTCALLBACK get(AEffect* effect, VstInt32) { return self(effect).value; }

void misbehave(const instrument& played, VstInt32 nb_frames) {
    if (fault == "allocation") {
        void* volatile memory = std::malloc(512); // volatile, or the compiler leaves both out
        std::free(memory);
    }
    if (fault == "opens_file")
        ::close(::open("/dev/null", O_RDONLY));
    if (fault == "lock")
        const std::scoped_lock held(process_lock);
    if (fault == "control_register")
        _mm_setcsr(_mm_getcsr() | 0x2000);
    if (fault == "long_blocks" && nb_frames > played.announced)
        std::raise(SIGSEGV);
}

void VSTCALLBACK process(AEffect* effect, float**, float** outputs, VstInt32 nb_frames) {
    instrument& played = self(effect);
    misbehave(played, nb_frames);
    float& phase = fault == "shared_state" ? shared_phase : played.phase;
    for (VstInt32 i = 0; i < nb_frames; ++i) {
        phase = std::fmod(phase + 440 / played.rate, 1.0f);
        float sample = played.is_held && fault != "mute" ? phase - 0.5f : 0;
        if (fault == "subnormals" && !played.is_held)
            sample = std::numeric_limits<float>::denorm_min();
        if (fault == "no_number" && played.rate == 88200)
            sample = std::numeric_limits<float>::quiet_NaN();
        for (int output = 0; output < 2; ++output)
            if (outputs[output] || fault == "null_outputs")
                outputs[output][i] = sample;
    }
}

} // namespace

extern "C" __attribute__((visibility("default"))) AEffect* VSTCALLBACK
VSTPluginMain(audioMasterCallback host) {
    if (fault == "no_record")
        return nullptr;
    instrument* volatile made = new instrument; // volatile, or the lost one is never made
    if (fault == "leak")
        made = new instrument;
    if (fault == "left_file")
        ::open("/dev/null", O_RDONLY);
    if (fault == "mapped_leak")
        std::memset(mmap(nullptr, 8192, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0),
                    1, 8192);
    made->host = host;
    AEffect& effect = made->effect;
    effect.magic = kEffectMagic;
    effect.dispatcher = dispatch;
    effect.setParameter = set;
    effect.getParameter = get;
    effect.processReplacing = process;
    effect.numParams = 1;
    effect.numOutputs = 2;
    effect.flags =
        effFlagsCanReplacing | effFlagsIsSynth | effFlagsHasEditor | effFlagsProgramChunks;
    effect.uniqueID = 0x46617574;
    effect.object = made;
    return &effect;
}
