#include "check/rows.h"

#include "failure/failure.h"

#include <algorithm>
#include <iterator>

table only(plugin_format format, table rows) {
    for (row& each : rows)
        each.of = format;
    return rows;
}

table operator+(table first, const table& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

table all_rows() {
    table rows;
    for (const auto& subject :
         {loading_rows, record_rows, text_rows, opcode_rows, state_rows, set_up_rows, block_rows,
          event_rows, parameter_rows, sound_rows, processor_rows, instance_rows, resource_rows,
#ifdef __linux__
          audio_thread_rows,
#endif
#ifdef HOST_KNOWS_CLAP
          clap_rows,
#endif
#ifdef HOST_KNOWS_LV2
          lv2_rows,
#endif
          panel_rows})
        std::ranges::move(subject(), std::back_inserter(rows));
    return rows;
}

row row_of(const std::string& name) {
    for (const row& listed : all_rows())
        if (listed.name == name)
            return listed;
    return {load_row, demand::interface, [](trial& running) {
                try {
                    (void)plugin_open(running.file);
                } catch (const failure& flaw) {
                    if (flaw.status == exit_misused)
                        throw; // a plug-in that is broken fails in every row
                }
            }};
}
