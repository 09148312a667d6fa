#include "command/check_command.h"

#include <limits>

void add_check_options(CLI::App& app, check_request& request) {
    app.footer("A row whose subject a plug-in does not have is skipped. Exit status: 0 if no row\n"
               "FAILED, 1 if one did, 2 for wrong usage or a file that is no plug-in.");
    app.add_flag("--list", request.lists, "list the rows, and judge nothing");
    app.add_option_function<std::vector<std::string>>(
           "files",
           [&request](const std::vector<std::string>& names) {
               for (const std::string& name : names)
                   request.files.emplace_back(std::u8string(name.begin(), name.end()));
           },
           "plug-ins for this system: VST 2 or CLAP files, LV2\nfolders")
        ->option_text("FILE...");
    app.add_option("--only", request.starts,
                   "judge only rows whose names start so; may be\nrepeated")
        ->option_text("START")
        ->allow_extra_args(false)
        ->take_all();
    add_number(app, "--seed", request.seed, std::uint32_t{0},
               std::numeric_limits<std::uint32_t>::max(), "start of the judge's random numbers (1)")
        ->option_text("N");
    add_number(app, "--limit", request.limit_seconds, 1, 3600, "time that a row may take (60)")
        ->option_text("SECONDS");
    app.add_flag("--verbose", request.is_verbose,
                 "tell the place of every row, and show what plug-ins\nprint");
#ifdef _WIN32
    app.add_option("--row", request.row)->group("");
    app.add_option("--shared", request.shared)->group("");
#endif
    app.callback([&request] {
        if (request.files.empty() && !request.lists)
            throw CLI::ValidationError("a plug-in's file is missing",
                                       CLI::ExitCodes::RequiredError);
    });
}
