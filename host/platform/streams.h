#pragma once
/// Standard streams and files without a name.

#include <cstdio>
#include <filesystem>

/// From now on what any code prints on standard output is dropped: plug-ins chat there, and it
/// would end up in the audio or among our own lines. Returns a stream that still leads to the real
/// one, or null if that is closed. Whatever standard stream came closed is closed to reading, and
/// drops what is written, so that no file opened later takes its place. Call once, first of all.
[[nodiscard]] std::FILE* claim_standard_output();

/// From now on nothing that is printed is seen, neither on standard output nor on standard error.
void discard_output();

/// From now on what is printed on standard output goes where standard error does, and at once.
void join_output_to_errors();

[[nodiscard]] bool is_terminal(std::FILE* stream);

/// The width of the stream's terminal; 80 where it is not known.
[[nodiscard]] int terminal_columns(std::FILE* stream);

/// Where there is room for large files for a while: what TMPDIR says, or else a folder that lies on
/// disk, as /tmp often does not.
[[nodiscard]] std::filesystem::path scratch_folder();

/// A file in the folder that never has a name and is gone when closed; null on failure, with the
/// reason in errno.
[[nodiscard]] std::FILE* open_scratch_file(const std::filesystem::path& folder);

/// A file on the folder's disk that has no name yet and vanishes with the process; null where the
/// file system knows no such files, or on failure.
[[nodiscard]] std::FILE* open_nameless_file(const std::filesystem::path& folder);

/// Gives a nameless file a name that must not exist yet. Returns whether that worked; if not, the
/// reason is in errno.
[[nodiscard]] bool name_file(std::FILE* stream, const std::filesystem::path& file);

/// Renames a file to what must not exist yet. Returns whether that worked; if not, the reason is in
/// errno.
[[nodiscard]] bool move_to_new_file(const std::filesystem::path& from,
                                    const std::filesystem::path& to);

/// Creates a file that must not exist yet; null on failure, with the reason in errno.
[[nodiscard]] std::FILE* create_new_file(const std::filesystem::path& file);

/// Gives an open file these permissions, where the file system knows any.
void set_permissions(std::FILE* stream, std::filesystem::perms permissions);

/// Whether the file may be opened for writing; if not, the reason is in errno.
[[nodiscard]] bool may_write(const std::filesystem::path& file);

[[nodiscard]] int process_id();

/// Makes a write into a closed pipe fail instead of ending the process.
void ignore_closed_pipes();
