#pragma once
/// Where the output goes and in which format.

#include "audio_file/audio_file.h"
#include "command/render_command.h"

struct file_kind {
    const char* name;    ///< as messages call it
    const char* example; ///< of a file's name, without its ending
    std::vector<std::string> endings;
};

/// The ending of the file's name, one of the kind's, in lower case. Throws a failure of misuse if
/// the name has none of them, or nothing else.
[[nodiscard]] std::string ending_of(const file_kind& kind, const std::string& file);

/// "-" or a file's name; `p_output` is the real standard output. Throws a failure of misuse if the
/// audio would end up in a terminal, in the song, or unasked in a file that is there.
[[nodiscard]] std::string output_choose(const render_request& request, std::FILE* p_output);

/// The format that the name of the output asks for, with the number of channels left open. Throws
/// a failure of misuse if the name asks for none, or the format lacks the requested bits.
[[nodiscard]] audio_format output_choose_format(const render_request& request,
                                                const std::string& output);
