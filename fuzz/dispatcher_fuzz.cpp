// The calls of a hostile host: any opcode with any number, memory of hostile content and of just
// the size that hosts have for it, or null; events, blocks, parameters and an open panel between;
// answers without sense. What a pointer stands for is as the interface has it: nobody can tell a
// wrong one.

#include "fuzz/fuzzed.h"
#include "fuzz/instrument.h"
#include "platform/file_dialog/file_dialog_headless.h"
#include "vst/editor/tags.h"

#include <bit>
#include <deque>
#include <limits>
#include <map>
#include <string>

namespace {

/// Bytes that hosts have for what an opcode writes.
const std::map<VstInt32, std::size_t> rooms{{effGetProgramName, 24},
                                            {effGetParamLabel, 8},
                                            {effGetParamDisplay, 16},
                                            {effGetParamName, 11},
                                            {effEditGetRect, sizeof(void*)},
                                            {effGetChunk, sizeof(void*)},
                                            {effGetProgramNameIndexed, 24},
                                            {effGetInputProperties, sizeof(VstPinProperties)},
                                            {effGetOutputProperties, sizeof(VstPinProperties)},
                                            {effGetEffectName, 32},
                                            {effGetVendorString, 64},
                                            {effGetProductString, 64},
                                            {effGetSpeakerArrangement, sizeof(void*)}};

class hostile_host {
public:
    explicit hostile_host(FuzzedDataProvider& bytes) : data(bytes) {}

    void act() {
        if (organ.record && data.ConsumeBool())
            organ.ask(effEditOpen, 0, 0, &organ.parent);
        using action = void (hostile_host::*)();
        while (organ.record && data.remaining_bytes() > 0)
            (this
                 ->*data.PickValueInArray<action>({&hostile_host::prepare, &hostile_host::dispatch,
                                                   &hostile_host::send, &hostile_host::process,
                                                   &hostile_host::move}))();
    }

private:
    struct event {
        VstMidiSysexEvent record{}; ///< the largest there is; of whatever type
        std::string dump;
    };

    /// As many small ones as large ones.
    template <typename Number = VstInt32>
    Number number() {
        return data.ConsumeIntegral<Number>()
               >> data.ConsumeIntegralInRange<int>(0, std::numeric_limits<Number>::digits);
    }
    float decimal() {
        return data.PickValueInArray({data.ConsumeProbability<float>(),
                                      static_cast<float>(number()),
                                      std::bit_cast<float>(data.ConsumeIntegral<VstInt32>())});
    }
    template <typename Pointee>
    Pointee* or_null(Pointee* address) {
        return data.ConsumeBool() ? address : nullptr;
    }

    /// Ends in a zero, for those who read it as a text.
    std::vector<char> memory(VstInt32 opcode) {
        const auto room = rooms.find(opcode);
        std::string content = take_text(data, 1200);
        if (room != rooms.end())
            content.resize(room->second - 1);
        return {content.c_str(), content.c_str() + content.size() + 1};
    }

    void prepare() {
        organ.ask(effSetSampleRate, 0, 0, nullptr,
                  data.PickValueInArray({22050.0f, 48000.0f, 192000.0f, decimal()}));
        organ.ask(effSetBlockSize, 0, number<VstIntPtr>());
    }

    void dispatch() {
        const VstInt32 opcode =
            data.ConsumeBool() ? number() : data.ConsumeIntegralInRange<VstInt32>(0, 80);
        std::vector<char> pointed = memory(opcode), other = memory(opcode);
        void* ptr = opcode == effEditOpen ? static_cast<void*>(&organ.parent) : pointed.data();
        auto value = number<VstIntPtr>();
        if (opcode == effSetSpeakerArrangement || opcode == effGetSpeakerArrangement)
            value = reinterpret_cast<VstIntPtr>(or_null(other.data()));
        if (opcode == effProcessEvents)
            ptr = nullptr;
        organ.ask(opcode, number(), value, or_null(ptr), decimal());
        headless_user::requests.clear();
    }

    void send() {
        std::deque<event> events;
        event_list list;
        while (data.ConsumeBool()) {
            event& sent = events.emplace_back();
            sent.dump = take_text(data, 5000);
            sent.record = {.type =
                               data.PickValueInArray<VstInt32>({kVstMidiType, kVstSysExType, 0}),
                           .byteSize = number(),
                           .deltaFrames = number(),
                           .flags = number(),
                           .dumpBytes = std::min(number(), static_cast<VstInt32>(sent.dump.size())),
                           .resvd1 = data.ConsumeIntegral<VstIntPtr>(), // a message's bytes
                           .sysexDump = or_null(sent.dump.data()),
                           .resvd2 = 0};
            list.add(reinterpret_cast<VstEvent*>(or_null(&sent.record)));
        }
        VstEvents* const records = list.records();
        records->numEvents = std::min(records->numEvents, number());
        organ.ask(effProcessEvents, number(), number(), records, decimal());
    }

    void process() {
        const auto nb_frames = data.ConsumeIntegralInRange<VstInt32>(-1, 300);
        if (data.ConsumeBool())
            return play(organ.record, std::max(nb_frames, 0));
        std::vector<float> room(300);
        float* outputs[] = {or_null(room.data()), or_null(room.data())};
        for (auto* call : {organ.record->processReplacing, organ.record->__processDeprecated})
            call(organ.record, or_null(outputs), or_null(outputs), nb_frames);
    }

    void move() {
        const VstInt32 index =
            data.ConsumeBool() ? number()
                               : data.ConsumeIntegralInRange<VstInt32>(MIDI_LEARN_TAG, PROGRAM_TAG);
        organ.record->setParameter(organ.record, index, decimal());
        organ.record->getParameter(organ.record, index);
    }

    FuzzedDataProvider& data;
    instrument organ{[this](const host_call&) { return data.ConsumeIntegral<std::int8_t>(); }};
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t nb_bytes) {
    FuzzedDataProvider data(p_bytes, nb_bytes);
    hostile_host(data).act();
    return 0;
}
