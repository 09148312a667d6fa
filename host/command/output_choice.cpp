#include "command/output_choice.h"

#include "platform/streams.h"
#include "text/lower_case.h"

#include <algorithm>

namespace fs = std::filesystem;

namespace {

[[noreturn]] void misuse(const std::string& sentence) { throw failure{exit_misused, sentence}; }

} // namespace

std::string ending_of(const file_kind& kind, const std::string& file) {
    const auto is_known = [&kind](const std::string& text) {
        return std::find(kind.endings.begin(), kind.endings.end(), text) != kind.endings.end();
    };
    const fs::path name = fs::path{file}.filename();
    if (is_known(lower_case(name.string()))) // a hidden file to the library, without extension
        misuse(std::string{"the "} + kind.name + " " + file
               + " has no name before its ending; call it " + kind.example + name.string());
    std::string ending = lower_case(name.extension().string());
    if (is_known(ending))
        return ending;
    std::string choices;
    for (const std::string& known : kind.endings)
        choices += (choices.empty() ? "" : " or ") + known;
    misuse(std::string{"the name of the "} + kind.name + " " + file + " must end in " + choices);
}

std::string output_choose(const render_request& request, std::FILE* p_output) {
    const bool is_named = !request.output.empty();
    std::string output = is_named ? request.output
                         : request.song == "-"
                             ? "-"
                             : fs::path{request.song}.filename().replace_extension(".wav").string();
    if (output == "-") {
        if (is_terminal(p_output))
            misuse("standard output is a terminal; name the audio file with -o FILE");
        return output;
    }
    std::error_code error;
    if (fs::equivalent(request.song, output, error))
        misuse("the audio would replace the song " + request.song + "; name its file with -o FILE");
    if (!is_named && fs::exists(fs::symlink_status(output, error)))
        misuse(output + " is there already; replace it with -o " + output
               + ", or name another with -o FILE");
    return output;
}

audio_format output_choose_format(const render_request& request, const std::string& output) {
    const file_kind kind{"audio file", "song", {".wav", ".flac"}};
    const bool is_flac = output != "-" && ending_of(kind, output) == ".flac";
    const int finest = is_flac ? 24 : 32;
    if (request.nb_bits > finest)
        misuse("a FLAC file takes --bits 16 or 24; only a WAV file takes 32");
    return {.is_flac = is_flac,
            .nb_bits = request.nb_bits ? request.nb_bits : finest,
            .rate_hz = request.rate_hz};
}
