// The text that an instrument finds beside the host in place of both compiled-in ones, registry and
// wiring, each of which reads its own section: the instrument is made, shown and played.

#include "fuzz/fuzzed.h"
#include "fuzz/instrument.h"
#include "tests/temporary_folder.h"

#include <span>

namespace {

namespace fs = std::filesystem;

struct hosts_folder : temporary_folder {
    hosts_folder() {
        for (const char* name : {"host", "control/confs", "harpmatrix"})
            fs::create_directories(path / name);
        fs::create_symlink("../../harpmatrix/korvel.ini", path / "control/confs/korvel.ini");
    }
};

/// Every key and every controller on all channels.
void send_all(AEffect* record, std::uint8_t velocity) {
    event_list list;
    for (unsigned channel = 0; channel < nb_midi_channels; ++channel)
        for (std::uint8_t number = 0; number < controller_all_sound_off; ++number) {
            const auto kind = channel == 0 ? message_note_on : message_control_change;
            list.add_midi(message_make(kind, channel, number, velocity), number);
        }
    record->dispatcher(record, effProcessEvents, 0, 0, list.records(), 0);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t nb_bytes) {
    static const hosts_folder folder;
    file_write(folder / "harpmatrix/korvel.ini", std::span(p_bytes, nb_bytes));
    const fs::path before = fs::current_path();
    fs::current_path(folder.path / "host");
    instrument organ;
    fs::current_path(before);

    organ.ask(effSetSampleRate, 0, 0, nullptr, 22050);
    organ.ask(effEditOpen, 0, 0, &organ.parent);
    for (VstInt32 i = 0; i < organ.record->numParams; ++i) {
        char text[64];
        organ.ask(effGetParamName, i, 0, text);
        organ.ask(effGetParamDisplay, i, 0, text);
    }
    for (const int velocity : {100, 0, 100}) {
        send_all(organ.record, static_cast<std::uint8_t>(velocity));
        play(organ.record, 100);
        organ.ask(effEditIdle);
    }
    return 0;
}
