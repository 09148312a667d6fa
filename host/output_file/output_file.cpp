#include "output_file/output_file.h"

#include "failure/failure.h"
#include "platform/interrupt.h"
#include "platform/streams.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>

namespace fs = std::filesystem;

output_file::output_file(const fs::path& file, if_there one_there)
    : name_{file.string()}, file_{file}, one_there_{one_there} {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (fs::is_directory(status))
        fail(EISDIR);
    if (fs::exists(status) && !may_write(file))
        fail(errno);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        scratch_.emplace();
        return;
    }
    if (fs::exists(status))
        file_ = fs::canonical(file); // the file is replaced, not a link to it
    open_beside();
    if (fs::exists(status))
        set_permissions(p_stream_, status.permissions());
}

output_file::output_file(std::FILE* p_receiver)
    : name_{"standard output"}, p_receiver_{p_receiver} {
    if (!p_receiver)
        fail(EBADF);
    scratch_.emplace();
}

output_file::~output_file() {
    if (p_stream_)
        std::fclose(p_stream_);
    std::error_code error;
    if (temporary_.empty())
        return;
    fs::remove(temporary_, error);
    interrupt_removes(nullptr);
}

template <typename Claim>
void output_file::claim_temporary(Claim claim) {
    const interrupt_pause pause; // as the file comes, the notice of it does
    const std::string prefix = ".tindelwax-" + std::to_string(process_id()) + "-";
    for (int i = 0; temporary_.empty(); ++i) {
        const fs::path candidate = file_.parent_path() / (prefix + std::to_string(i) + ".part");
        if (claim(candidate))
            interrupt_removes((temporary_ = candidate).c_str());
        else if (errno != EEXIST)
            fail(errno);
    }
}

void output_file::open_beside() {
    p_stream_ = open_nameless_file(file_.parent_path());
    if (!p_stream_)
        claim_temporary([this](const fs::path& name) {
            return (p_stream_ = create_new_file(name)) != nullptr;
        });
}

void output_file::finish() {
    if (scratch_)
        return pass_on();
    if (std::fflush(p_stream_) != 0 || std::ferror(p_stream_))
        fail(errno);
    // A link never replaces a file, so a nameless stream needs a name before the final one too.
    if (temporary_.empty())
        claim_temporary([this](const fs::path& name) { return name_file(p_stream_, name); });
    close(std::exchange(p_stream_, nullptr));
    const bool is_in_place = one_there_ == if_there::refuses
                                 ? move_to_new_file(temporary_, file_)
                                 : std::rename(temporary_.c_str(), file_.c_str()) == 0;
    if (!is_in_place)
        fail(errno);
    interrupt_removes(nullptr);
    temporary_.clear();
}

void output_file::pass_on() {
    if (p_receiver_)
        return copy_to(p_receiver_);
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> device{std::fopen(file_.c_str(), "wb"),
                                                           std::fclose};
    if (!device)
        fail_in_place(errno);
    copy_to(device.get());
    close(device.release());
}

void output_file::copy_to(std::FILE* p_receiver) {
    scratch_->replay<char>([&](std::span<const char> piece) {
        if (std::fwrite(piece.data(), 1, piece.size(), p_receiver) != piece.size())
            fail_in_place(errno);
    });
    if (std::fflush(p_receiver) != 0)
        fail_in_place(errno);
}

void output_file::close(std::FILE* p_stream) {
    if (std::fclose(p_stream) != 0)
        fail_in_place(errno);
}

void output_file::fail(int error_number) const {
    if (scratch_)
        scratch_->fail(error_number);
    fail_in_place(error_number);
}

void output_file::fail_in_place(int error_number) const {
    const char* next_step = error_number == EPIPE ? "its reader ended before it had all; see why"
                                                  : "choose another place with -o";
    throw failure{exit_failed,
                  "cannot write " + name_ + ": " + std::strerror(error_number) + "; " + next_step};
}
