#include "audio_file/audio_file.h"

#include "failure/failure.h"

#include <cerrno>
#include <limits>
#include <sndfile.h>

namespace {

sf_count_t file_length(void* p_stream) {
    auto* stream = static_cast<std::FILE*>(p_stream);
    const auto position = ftello(stream);
    fseeko(stream, 0, SEEK_END);
    const auto length = ftello(stream);
    fseeko(stream, position, SEEK_SET);
    return length;
}

sf_count_t file_seek(sf_count_t offset, int whence, void* p_stream) {
    auto* stream = static_cast<std::FILE*>(p_stream);
    return fseeko(stream, offset, whence) == 0 ? ftello(stream) : -1;
}

sf_count_t file_read(void* bytes, sf_count_t nb_bytes, void* p_stream) {
    return static_cast<sf_count_t>(std::fread(bytes, 1, static_cast<std::size_t>(nb_bytes),
                                              static_cast<std::FILE*>(p_stream)));
}

sf_count_t file_write(const void* bytes, sf_count_t nb_bytes, void* p_stream) {
    return static_cast<sf_count_t>(std::fwrite(bytes, 1, static_cast<std::size_t>(nb_bytes),
                                               static_cast<std::FILE*>(p_stream)));
}

sf_count_t file_tell(void* p_stream) { return ftello(static_cast<std::FILE*>(p_stream)); }

int library_format(const audio_format& format) {
    const int subtype = format.nb_bits == 16   ? SF_FORMAT_PCM_16
                        : format.nb_bits == 24 ? SF_FORMAT_PCM_24
                                               : SF_FORMAT_FLOAT;
    return (format.is_flac ? SF_FORMAT_FLAC : SF_FORMAT_WAV) | subtype;
}

SNDFILE* as_sound(void* p_sound) { return static_cast<SNDFILE*>(p_sound); }

} // namespace

void audio_file::closer::operator()(void* p_sound) const { sf_close(as_sound(p_sound)); }

// Through the library's virtual files all writing is buffered, and errno stays the cause.
audio_file::audio_file(output_file& output, const audio_format& format) : output_{output} {
    static SF_VIRTUAL_IO stream_access{file_length, file_seek, file_read, file_write, file_tell};
    SF_INFO info{};
    info.samplerate = format.rate_hz;
    info.channels = format.nb_channels;
    info.format = library_format(format);
    p_sound_.reset(sf_open_virtual(&stream_access, SFM_WRITE, &info, output.stream()));
    if (!p_sound_)
        throw failure{exit_failed,
                      std::string{"cannot start the audio file: "} + sf_strerror(nullptr)};
    sf_command(as_sound(p_sound_.get()), SFC_SET_CLIPPING, nullptr, SF_TRUE);
    // The chunk that tells the peak also tells the time of day.
    sf_command(as_sound(p_sound_.get()), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
}

audio_file::~audio_file() = default;

void audio_file::write(std::span<const float> samples) {
    const auto nb_samples = static_cast<sf_count_t>(samples.size());
    errno = 0;
    if (sf_write_float(as_sound(p_sound_.get()), samples.data(), nb_samples) != nb_samples)
        output_.fail(errno ? errno : EIO);
}

void audio_file::finish() {
    errno = 0;
    const bool is_complete = sf_close(as_sound(p_sound_.release())) == 0;
    if (!is_complete)
        output_.fail(errno ? errno : EIO);
    output_.finish();
}

std::uint64_t audio_format_max_frames(const audio_format& format) {
    if (format.is_flac)
        return (std::uint64_t{1} << 36) - 1; // its header counts samples in 36 bits
    constexpr std::uint64_t room_for_header = 4096;
    const auto frame_bytes = static_cast<unsigned>(format.nb_bits / 8 * format.nb_channels);
    return (std::numeric_limits<std::uint32_t>::max() - room_for_header) / frame_bytes;
}
