#pragma once
/// Whose file a name stands for. A text from a shared folder could be anybody's, and configuration
/// texts decide how loud the instrument is and how long it takes to load. [setup]

/// Whether nobody but this process's user and the system's could have put the file there: it, the
/// links and the folders on the way to it belong to them, and no other may write there (a sticky
/// folder is fine). A file that is not there is not trusted. On Windows every file is trusted.
[[nodiscard]] bool is_trusted_file(const char* filename);
