#include "command/panel_command.h"

#include "command/output_choice.h"
#include "picture/editor_picture.h"
#include "picture/png_file.h"
#include "platform/display.h"

namespace {

/// Has the editor as large as is wanted, where the plug-in can. Returns how many times as large its
/// picture is still to be made.
int enlarge(plugin& instrument, std::optional<int> wanted) {
    const int scale = wanted.value_or(1);
    if (!wanted || !instrument.set_editor_scale(1))
        return scale;
    const editor_extent plain = instrument.editor_size();
    instrument.set_editor_scale(scale);
    const editor_extent size = instrument.editor_size();
    if (size.is_empty()) // known only once it is open
        return 1;
    if (plain.width * scale % size.width == 0)
        return plain.width * scale / size.width;
    instrument.set_editor_scale(1);
    return scale;
}

} // namespace

void panel_run(const panel_request& request) {
    (void)ending_of({"picture", "panel", {".png"}}, request.output);
    const display shown_on;
    if (!shown_on.error.empty())
        throw failure{exit_failed, shown_on.error};
    instrument_try(request, [&request](plugin& instrument) {
        enlarge(instrument, request.scale);
        (void)editor_picture(instrument);
    });
    const auto p_loaded = plugin_load(request.plugin_file);
    plugin& instrument = *p_loaded;
    instrument_set_up(instrument, request);
    const int rest = enlarge(instrument, request.scale);
    const picture shown = editor_picture(instrument);
    output_file output{std::filesystem::path{request.output}};
    png_file_write(output, shown, rest);
}
