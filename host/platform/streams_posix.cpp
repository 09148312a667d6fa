#include "platform/streams.h"

#include "platform/interrupt.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Without privileges a descriptor can be linked only by way of here.
constexpr const char* descriptor_folder = "/proc/self/fd";

} // namespace

std::FILE* claim_standard_output() {
    const int real_output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    int nowhere = 0;
    do
        nowhere = open("/dev/null", O_WRONLY);
    while (nowhere >= 0 && nowhere <= STDERR_FILENO);
    if (nowhere >= 0) {
        dup2(nowhere, STDOUT_FILENO);
        close(nowhere);
    }
    return real_output < 0 ? nullptr : fdopen(real_output, "wb");
}

void discard_output() {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0)
        return;
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
}

void join_output_to_errors() {
    dup2(STDERR_FILENO, STDOUT_FILENO);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
}

bool is_terminal(std::FILE* stream) { return stream && isatty(fileno(stream)); }

int terminal_columns(std::FILE* stream) {
    constexpr int usual = 80;
    winsize size{};
    const bool is_known = ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return is_known ? size.ws_col : usual;
}

std::FILE* open_nameless_file(const std::filesystem::path& folder) {
    if (access(descriptor_folder, X_OK) != 0)
        return nullptr;
    const int descriptor =
        open(folder.empty() ? "." : folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
    return descriptor < 0 ? nullptr : fdopen(descriptor, "w+b");
}

std::filesystem::path scratch_folder() {
    const char* wished = std::getenv("TMPDIR");
    return wished && *wished ? wished : "/var/tmp";
}

std::FILE* open_scratch_file(const std::filesystem::path& folder) {
    if (std::FILE* stream = open_nameless_file(folder))
        return stream;
    const interrupt_pause pause; // while it has a name
    std::string name = folder / "tindelwax-XXXXXX";
    const int descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0)
        return nullptr;
    unlink(name.c_str());
    return fdopen(descriptor, "w+b");
}

bool name_file(std::FILE* stream, const std::filesystem::path& file) {
    const auto source = std::filesystem::path{descriptor_folder} / std::to_string(fileno(stream));
    return linkat(AT_FDCWD, source.c_str(), AT_FDCWD, file.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

bool move_to_new_file(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL) // that says a file system which cannot refuse
        return false;
    if (std::filesystem::exists(std::filesystem::symlink_status(to))) {
        errno = EEXIST;
        return false;
    }
    return std::rename(from.c_str(), to.c_str()) == 0;
}

std::FILE* create_new_file(const std::filesystem::path& file) {
    return std::fopen(file.c_str(), "w+bx");
}

void set_permissions(std::FILE* stream, std::filesystem::perms permissions) {
    (void)fchmod(fileno(stream), static_cast<mode_t>(permissions));
}

bool may_write(const std::filesystem::path& file) { return access(file.c_str(), W_OK) == 0; }

int process_id() { return getpid(); }

void ignore_closed_pipes() { std::signal(SIGPIPE, SIG_IGN); }
