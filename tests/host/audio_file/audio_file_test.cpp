#include "audio_file/audio_file.h"

#include "failure/failure.h"
#include "platform/interrupt.h"
#include "tests/temporary_folder.h"

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
        EXPECT_EQ(file_content(folder / row.name).find("PEAK"), std::string::npos) << "has a time";
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

TEST_F(AudioFile, ThePreviousFileStaysBehindItsLinkUntilTheNewOneIsWhole) {
    const std::string name = folder / "link.wav";
    std::filesystem::create_symlink("real.wav", name);
    for (const bool denied : {false, true}) {
        denies_nameless_files = denied;
        file_write(folder / "real.wav", std::string{"before"});
        const auto expect_nothing_happened = [&] {
            EXPECT_EQ(file_content(name), "before");
            EXPECT_EQ(folder.nb_files(), 2u) << "the unfinished file stayed";
        };
        {
            output_file output{std::filesystem::path{name}};
            audio_file{output, {}}.write(samples);
            EXPECT_EQ(file_content(name), "before");
            EXPECT_EQ(folder.nb_files() == 3, denied || !knows_nameless_files);
        }
        expect_nothing_happened();
        const auto end_early = [&] {
            interrupt_catch();
            const output_file output{std::filesystem::path{name}};
            std::raise(SIGTERM);
        };
        EXPECT_EXIT(end_early(), testing::KilledBySignal(SIGTERM), "^tindelwax: interrupted");
        expect_nothing_happened();
        const std::string came_meanwhile = folder / "new.wav";
        {
            output_file output{came_meanwhile, output_file::if_there::refuses};
            file_write(came_meanwhile, std::string{"theirs"});
            EXPECT_THROW(output.finish(), failure);
        }
        EXPECT_EQ(file_content(came_meanwhile), "theirs");
        std::filesystem::remove(came_meanwhile);
        expect_nothing_happened();
        write_samples(name, {});
        EXPECT_EQ(file_content(folder / "real.wav").substr(0, 4), "RIFF");
        EXPECT_TRUE(std::filesystem::is_symlink(name));
        EXPECT_EQ(folder.nb_files(), 2u);
    }
    denies_nameless_files = false;
}

} // namespace
