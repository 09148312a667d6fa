#include "check/rows.h"

#include "failure/failure.h"
#include "plugin/effect.h"

#include <algorithm>
#include <iterator>

table all_rows() {
    table rows;
    for (const auto& subject :
         {loading_rows, record_rows, text_rows, opcode_rows, set_up_rows, block_rows, event_rows,
          parameter_rows, sound_rows, processor_rows, instance_rows, resource_rows,
#ifdef __linux__
          audio_thread_rows,
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
                    const effect loaded(running.file, answer_version, library::in_the_end::stays);
                } catch (const failure& flaw) {
                    if (flaw.status == exit_misused)
                        throw; // a plug-in that is broken fails in every row
                }
            }};
}
