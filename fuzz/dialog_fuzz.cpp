// What a file dialog answers: the system's, a program that prints anything in any pieces, and a
// host's, which writes into the record's path or lets it point elsewhere. Meanwhile the host may
// close the panel.

#include "fuzz/fuzzed.h"
#include "fuzz/instrument.h"
#include "platform/file_dialog/child_process.h"
#include "platform/file_dialog/file_dialog.h"
#include "vst/audioeffectx.h"
#include "vst/editor/file_choice.h"

namespace {

FuzzedDataProvider* p_data = nullptr;

} // namespace

// The dialog's program, in place of the real one. No more bytes make one that ends well.

std::optional<ChildProcess> ChildProcess::run(const std::vector<std::string>&) {
    return p_data->ConsumeBool() ? std::nullopt : std::optional(ChildProcess(0, -1));
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : pid(other.pid), output_fd(other.output_fd), status(other.status) {}

ChildProcess::~ChildProcess() = default;

bool ChildProcess::read(std::string& text, int) {
    text += take_text(*p_data, 512);
    return p_data->ConsumeBool();
}

bool ChildProcess::succeeds() { return !p_data->ConsumeBool(); }

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t nb_bytes) {
    FuzzedDataProvider data(p_bytes, nb_bytes);
    p_data = &data;
    const bool has_dialog = data.ConsumeBool();
    std::string elsewhere;
    instrument organ([&](const host_call& call) -> VstIntPtr {
        switch (call.opcode) {
        case audioMasterVersion:
            return kVstVersion;
        case audioMasterCanDo:
            return has_dialog;
        case audioMasterIdle:
            return data.ConsumeBool() ? organ.ask(effEditClose) : 0;
        case audioMasterOpenFileSelector: {
            auto& answered = *static_cast<VstFileSelect*>(call.ptr);
            elsewhere = take_text(data, 2 * max_path_bytes);
            elsewhere.copy(answered.returnPath, max_path_bytes + 1); // perhaps without its end
            if (data.ConsumeBool())
                answered.returnPath = data.ConsumeBool() ? elsewhere.data() : nullptr;
            return data.ConsumeBool();
        }
        default:
            return 0;
        }
    });
    organ.ask(effEditOpen, 0, 0, &organ.parent);
    auto* const effect =
        static_cast<AudioEffectX*>(static_cast<AudioEffect*>(organ.record->object));
    const auto path = choose_file(effect, data.ConsumeBool() ? kVstFileSave : kVstFileLoad,
                                  data.ConsumeBool() ? file_content::bank : file_content::patch);
    require(!path || (!path->empty() && path->size() <= max_path_bytes));
    return 0;
}
