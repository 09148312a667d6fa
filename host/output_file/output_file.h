#pragma once
/// A file that appears under its name only when it is whole. Until then it grows beside that name,
/// nameless if the file system allows it, so that nothing stays if an instrument takes the process
/// down; or in a scratch file where it goes into a pipe, which cannot be rewound to complete a
/// header.

#include "output_file/scratch_file.h"

#include <optional>
#include <string>

class output_file {
public:
    enum class if_there { replaces, refuses };

    /// Opens a file that takes its place under the name when it is finished. A file that is there
    /// by then is refused with a failure, or replaced, and its mode kept; what is no regular file
    /// (a named pipe, say) receives the bytes instead. Throws a failure if that cannot work out.
    explicit output_file(const std::filesystem::path& file,
                         if_there one_there = if_there::replaces);

    /// Opens a file whose bytes go to `p_receiver` when it is finished; that stream stays open.
    explicit output_file(std::FILE* p_receiver);

    ~output_file(); ///< an unfinished file disappears
    output_file(const output_file&) = delete;
    output_file& operator=(const output_file&) = delete;

    /// Where to write, seekable; errors may be left to finish.
    [[nodiscard]] std::FILE* stream() const { return scratch_ ? scratch_->stream() : p_stream_; }

    /// Puts the file in its place. Throws a failure if any byte could not be written.
    void finish();

    /// Throws a failure for a write that failed with this value of errno.
    [[noreturn]] void fail(int error_number) const;

private:
    void open_beside();
    void pass_on();
    void copy_to(std::FILE* p_receiver);
    void close(std::FILE* p_stream);
    [[noreturn]] void fail_in_place(int error_number) const;

    /// Takes the first free name beside the file with which `claim` succeeds.
    template <typename Claim>
    void claim_temporary(Claim claim);

    std::string name_; // for messages
    std::filesystem::path file_{};
    if_there one_there_ = if_there::replaces;
    std::filesystem::path temporary_{}; // empty as long as the stream has no name
    std::FILE* p_receiver_ = nullptr;   // not owned
    std::optional<scratch_file> scratch_{};
    std::FILE* p_stream_ = nullptr; // beside the file; null where there is a scratch file
};
