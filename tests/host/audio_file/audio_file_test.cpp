#include "audio_file/audio_file.h"

#include "failure/failure.h"
#include "platform/interrupt.h"
#include "tests/temporary_folder.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {
bool denies_nameless_files = false;
bool knows_nameless_files = false; ///< of the file system, as last seen
} // namespace

/// Takes the place of the system's function, to play a file system without nameless files.
extern "C" int open(const char* name, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const mode_t mode = va_arg(more, mode_t);
    va_end(more);
    const bool is_nameless = (flags & O_TMPFILE) == O_TMPFILE;
    if (is_nameless && denies_nameless_files) {
        errno = EOPNOTSUPP;
        return -1;
    }
    const auto descriptor = static_cast<int>(syscall(SYS_openat, AT_FDCWD, name, flags, mode));
    if (is_nameless)
        knows_nameless_files = descriptor >= 0;
    return descriptor;
}

namespace {

const std::vector<float> samples{0.0f, 0.5f, -0.25f, 1.5f, -1.5f, 0.125f};

void write_samples(const std::string& name, const audio_format& format) {
    output_file output{std::filesystem::path{name}};
    audio_file file{output, format};
    file.write(samples);
    file.finish();
}

/// The number that the next file to be opened gets.
int free_descriptor() {
    const int descriptor = dup(STDERR_FILENO);
    close(descriptor);
    return descriptor;
}

struct AudioFile : testing::Test {
    temporary_folder folder;
};

TEST_F(AudioFile, EveryFormatReadsBackAndClipsOnlyWholeNumbers) {
    struct kind {
        const char* name;
        audio_format format;
        int subtype;
        float tolerance;
    };
    for (const kind& row : {kind{"a.wav", {.nb_bits = 32}, SF_FORMAT_WAV | SF_FORMAT_FLOAT, 0},
                            kind{"b.wav", {.nb_bits = 16}, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 4e-5f},
                            kind{"c.wav", {.nb_bits = 24}, SF_FORMAT_WAV | SF_FORMAT_PCM_24, 2e-7f},
                            kind{"d.flac", {true, 16}, SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 4e-5f},
                            kind{"e.flac", {true, 24}, SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 2e-7f}}) {
        write_samples(folder / row.name, row.format);
        SF_INFO info{};
        SNDFILE* p_sound = sf_open((folder / row.name).c_str(), SFM_READ, &info);
        ASSERT_TRUE(p_sound) << row.name;
        std::vector<float> read(samples.size());
        EXPECT_EQ(sf_readf_float(p_sound, read.data(), 3), 3) << row.name;
        sf_close(p_sound);
        EXPECT_EQ(info.format & (SF_FORMAT_TYPEMASK | SF_FORMAT_SUBMASK), row.subtype) << row.name;
        EXPECT_EQ(info.samplerate, 48000) << row.name;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const float limit = row.format.nb_bits == 32 ? 2 : 1;
            EXPECT_NEAR(read[i], std::clamp(samples[i], -limit, limit), row.tolerance)
                << row.name << " sample " << i;
        }
    }
}

TEST_F(AudioFile, HoldsNoChunkWithTheTimeOfDay) {
    write_samples(folder / "a.wav", {});
    EXPECT_EQ(file_content(folder / "a.wav").find("PEAK"), std::string::npos);
}

TEST_F(AudioFile, ThePreviousFileStaysUntilTheNewOneIsWhole) {
    for (const bool denied : {false, true}) {
        denies_nameless_files = denied;
        file_write(folder / "a.wav", std::string{"before"});
        {
            output_file output{std::filesystem::path{folder / "a.wav"}};
            audio_file file{output, {}};
            file.write(samples);
            EXPECT_EQ(file_content(folder / "a.wav"), "before");
            EXPECT_EQ(folder.nb_files() == 2, denied || !knows_nameless_files);
        }
        const auto end_early = [this] {
            interrupt_catch();
            const output_file output{std::filesystem::path{folder / "a.wav"}};
            std::raise(SIGTERM);
        };
        EXPECT_EXIT(end_early(), testing::KilledBySignal(SIGTERM), "^tindelwax: interrupted");
        EXPECT_EQ(file_content(folder / "a.wav"), "before");
        EXPECT_EQ(folder.nb_files(), 1u) << "the unfinished file stayed";
        write_samples(folder / "a.wav", {});
        EXPECT_EQ(file_content(folder / "a.wav").substr(0, 4), "RIFF");
        EXPECT_EQ(folder.nb_files(), 1u);
    }
    denies_nameless_files = false;
}

TEST_F(AudioFile, ALinkKeepsLeadingToTheFile) {
    file_write(folder / "real.wav", std::string{"before"});
    std::filesystem::create_symlink("real.wav", folder / "link.wav");
    write_samples(folder / "link.wav", {});
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.wav"));
    EXPECT_EQ(file_content(folder / "real.wav").substr(0, 4), "RIFF");
}

TEST_F(AudioFile, WhatCannotBeWrittenIsToldAtOnceByName) {
    for (const std::string& name : {folder / "no/such/folder.wav", folder.path.string()}) {
        try {
            output_file output{std::filesystem::path{name}};
            ADD_FAILURE() << name;
        } catch (const failure& refusal) {
            EXPECT_NE(std::string{refusal.what()}.find(name), std::string::npos) << refusal.what();
            EXPECT_EQ(refusal.status, exit_failed);
        }
    }
}

TEST_F(AudioFile, AFullDeviceIsNoticed) {
    for (const std::size_t nb_samples : {2u, 100000u}) { // less than the stream's buffer, and more
        std::FILE* p_full = std::fopen("/dev/full", "wb");
        ASSERT_TRUE(p_full);
        output_file to_stream{p_full};
        output_file by_name{std::filesystem::path{"/dev/full"}};
        for (output_file* p_output : {&to_stream, &by_name}) {
            audio_file file{*p_output, {}};
            file.write(std::vector<float>(nb_samples));
            const int free_before = free_descriptor();
            EXPECT_THROW(file.finish(), failure) << nb_samples << " samples";
            EXPECT_EQ(free_descriptor(), free_before) << "the device stayed open";
        }
        std::fclose(p_full);
    }
}

TEST_F(AudioFile, ABrokenPipeIsNoMatterOfPlace) {
    std::signal(SIGPIPE, SIG_IGN);
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    close(ends[0]);
    std::FILE* p_pipe = fdopen(ends[1], "wb");
    try {
        output_file output{p_pipe};
        audio_file{output, {}}.finish();
        ADD_FAILURE();
    } catch (const failure& refusal) {
        EXPECT_EQ(std::string{refusal.what()}.find("-o"), std::string::npos) << refusal.what();
    }
    std::fclose(p_pipe);
}

TEST(AudioFormat, WavFilesEndBelowFourGibibytes) {
    EXPECT_LT(audio_format_max_frames({}) * 8, std::uint64_t{1} << 32);
    EXPECT_GT(audio_format_max_frames({.is_flac = true, .nb_bits = 24}), std::uint64_t{1} << 32);
}

} // namespace
