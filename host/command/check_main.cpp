/// Judges plug-ins where there is no command.

#include "command/check_command.h"
#include "failure/failure.h"

#include <sstream>

// What nobody catches ends it, as it should.
int main(int argc, char** argv) { // NOLINT(bugprone-exception-escape)
    CLI::App app{"Judges VST 2.4 plug-ins through their binary interface.", "tindelwax-check"};
    app.allow_windows_style_options(false); // for files' names may start with a slash
    check_request request;
    try {
        add_check_options(app, request);
        app.parse(argc, argv);
        return check_run(request, stdout);
    } catch (const CLI::ParseError& end) {
        std::ostringstream asked_for;
        const int status = app.exit(end, asked_for, asked_for);
        std::fputs(asked_for.str().c_str(), status == 0 ? stdout : stderr);
        return status == 0 ? exit_success : exit_misused;
    } catch (const failure& end) {
        std::fprintf(stderr, "tindelwax-check: %s\n", end.what());
        return end.status;
    } catch (const std::exception& end) {
        std::fprintf(stderr, "tindelwax-check: it failed unexpectedly: %s\n", end.what());
        return exit_failed;
    }
}
