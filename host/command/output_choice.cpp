#include "command/output_choice.h"

#include "command/arguments.h"
#include "platform/streams.h"

namespace fs = std::filesystem;

namespace {

[[noreturn]] void misuse(const std::string& sentence) { throw failure{exit_misused, sentence}; }

/// ".wav" or ".flac".
std::string ending_of(const std::string& output) {
    if (output == "-")
        return ".wav";
    const auto is_known = [](const std::string& text) { return text == ".wav" || text == ".flac"; };
    const fs::path name = fs::path{output}.filename();
    if (is_known(lower_case(name.string()))) // a hidden file to the library, without extension
        misuse("the audio file " + output + " has no name before its ending; call it song"
               + name.string());
    std::string ending = lower_case(name.extension().string());
    if (!is_known(ending))
        misuse("the name of the audio file " + output + " must end in .wav or .flac");
    return ending;
}

} // namespace

std::string output_choose(const render_request& request, std::FILE* p_output) {
    std::string output = request.output;
    if (output.empty())
        output = request.song == "-"
                     ? "-"
                     : fs::path{request.song}.filename().replace_extension(".wav").string();
    if (output == "-" && is_terminal(p_output))
        misuse("standard output is a terminal; name the audio file with -o FILE");
    std::error_code error;
    if (output != "-" && fs::equivalent(request.song, output, error))
        misuse("the audio would replace the song " + request.song + "; name its file with -o FILE");
    return output;
}

audio_format output_choose_format(const render_request& request, const std::string& output) {
    const bool is_flac = ending_of(output) == ".flac";
    const int finest = is_flac ? 24 : 32;
    if (request.nb_bits > finest)
        misuse("a FLAC file takes --bits 16 or 24; only a WAV file takes 32");
    return {.is_flac = is_flac,
            .nb_bits = request.nb_bits ? request.nb_bits : finest,
            .rate_hz = request.rate_hz};
}
