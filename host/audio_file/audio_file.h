#pragma once
/// A WAV or FLAC file being written. The same samples give the same bytes: no dates are put in.

#include "output_file/output_file.h"

#include <cstdint>
#include <memory>
#include <span>

struct audio_format {
    bool is_flac = false;
    int nb_bits = 32; ///< 16 or 24 whole-number bits, or 32: floating point, in WAV only
    int rate_hz = 48000;
    int nb_channels = 2;
};

class audio_file {
public:
    /// Starts the file in `output`, which must outlive this. Throws a failure.
    audio_file(output_file& output, const audio_format& format);
    ~audio_file();

    /// Appends interleaved samples; full scale is 1, and whole numbers clip there. Throws a
    /// failure.
    void write(std::span<const float> samples);

    /// Completes the header and puts the output in its place. Throws a failure.
    void finish();

private:
    struct closer {
        void operator()(void* p_sound) const;
    };

    output_file& output_;
    std::unique_ptr<void, closer> p_sound_; // the library's handle
};

/// Frames that fit into the format's files: a WAV file tells its length in 32 bits.
[[nodiscard]] std::uint64_t audio_format_max_frames(const audio_format& format);
