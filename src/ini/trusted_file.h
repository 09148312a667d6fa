#pragma once
/// Whose file a name stands for. A text from a shared folder could be anybody's, and configuration
/// texts decide how loud the instrument is and how long it takes to load. [setup]

#include <optional>
#include <string>

/// The file's path without links, if nobody but this process's user and the system's could have put
/// it there: it, the links and the folders on the way to it belong to them, and no other may write
/// there (a sticky folder is fine). Null for any other file, and for one that is not there. On
/// Windows every file is trusted, under the name given; a page has no files.
[[nodiscard]] std::optional<std::string> trusted_path(const char* filename);
