/// Judges plug-ins where there is no command.

#include "command/check_command.h"
#include "failure/failure.h"
#include "failure/printable.h"
#include "platform/process.h"

#include <algorithm>

// What nobody catches ends it, as it should.
int main(int argc, char** argv) { // NOLINT(bugprone-exception-escape)
    CLI::App app{"Judges VST 2.4 and CLAP plug-ins through their binary interface.",
                 "tindelwax-check"};
    app.allow_windows_style_options(false); // for files' names may start with a slash
    check_request request;
    try {
        add_check_options(app, request);
        std::vector<std::string> arguments = program_arguments(argc, argv);
        std::ranges::reverse(arguments); // the library takes them from the back
        app.parse(std::move(arguments));
        return check_run(request, stdout);
    } catch (const CLI::CallForHelp&) {
        std::fputs(app.help().c_str(), stdout);
        return exit_success;
    } catch (const CLI::ParseError& end) {
        std::fprintf(stderr, "tindelwax-check: %s (--help tells more)\n",
                     printable(end.what()).c_str());
        return exit_misused;
    } catch (const failure& end) {
        std::fprintf(stderr, "tindelwax-check: %s\n", end.what());
        return end.status;
    } catch (const std::exception& end) {
        std::fprintf(stderr, "tindelwax-check: it failed unexpectedly: %s\n",
                     printable(end.what()).c_str());
        return exit_failed;
    }
}
