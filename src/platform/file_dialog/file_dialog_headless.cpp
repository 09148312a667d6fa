#include "platform/file_dialog/file_dialog_headless.h"

std::optional<std::string> file_dialog_run(const file_request& request, void*,
                                           const std::function<bool()>& keep_alive) {
    headless_user::requests.push_back(request);
    if (!keep_alive() || headless_user::chosen_path.empty())
        return std::nullopt;
    return headless_user::chosen_path;
}
