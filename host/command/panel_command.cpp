#include "command/panel_command.h"

#include "command/output_choice.h"
#include "picture/editor_picture.h"
#include "picture/png_file.h"
#include "platform/display.h"

void panel_run(const panel_request& request) {
    (void)ending_of({"picture", "panel", {".png"}}, request.output);
    const display shown_on;
    if (!shown_on.error.empty())
        throw failure{exit_failed, shown_on.error};
    instrument_try(request, [](plugin& instrument) { (void)editor_picture(instrument); });
    const auto p_loaded = plugin_load(request.plugin_file);
    plugin& instrument = *p_loaded;
    instrument_set_up(instrument, request);
    const picture shown = editor_picture(instrument);
    output_file output{std::filesystem::path{request.output}};
    png_file_write(output, shown, request.scale);
}
