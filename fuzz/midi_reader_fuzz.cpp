// A MIDI file, and what every caller of its reader relies on.

#include "fuzz/fuzzed.h"
#include "midi_file/midi_file.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t nb_bytes) {
    const midi_song song = midi_file_read({p_bytes, nb_bytes});
    require(song.bytes.size() <= 2 * nb_bytes);
    require(song.error.empty() || song.events.empty());
    double seconds = 0;
    for (const midi_event& event : song.events) {
        const auto message = midi_song_message(song, event);
        require(!message.empty() && message[0] >= 0x80);
        require(message[0] != 0xF0 ? message.size() <= 3 : message.back() == 0xF7);
        require(event.seconds >= seconds && event.seconds <= song.seconds);
        seconds = event.seconds;
    }
    return 0;
}
