#include "platform/file_dialog/file_dialog_headless.h"

#include <cstdio>

bool run_file_dialog(const VstFileSelect& request, void*, const std::function<bool()>& keep_alive) {
    headless_user::requests.push_back(request);
    if (!keep_alive() || headless_user::chosen_path.empty())
        return false;
    std::snprintf(request.returnPath, file_path_size, "%s", headless_user::chosen_path.c_str());
    return true;
}
