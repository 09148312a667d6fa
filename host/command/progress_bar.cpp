#include "command/progress_bar.h"

#include "platform/streams.h"

#include <cstdio>
#include <string>

namespace {
constexpr int nb_cells = 40;
}

progress_bar::progress_bar() : is_visible_{is_terminal(stderr)} {}

progress_bar::~progress_bar() {
    if (is_visible_ && percent_ >= 0)
        std::fprintf(stderr, "\r%*s\r", nb_cells + 8, "");
}

void progress_bar::show(double done) {
    const int percent = static_cast<int>(done * 100);
    if (!is_visible_ || percent == percent_)
        return;
    percent_ = percent;
    std::string cells(static_cast<std::size_t>(percent * nb_cells / 100), '#');
    cells.resize(nb_cells, '.');
    std::fprintf(stderr, "\r[%s] %3d %%", cells.c_str(), percent);
}
