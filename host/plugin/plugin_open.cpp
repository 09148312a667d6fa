#include "plugin/plugin.h"
#include "plugin/vst_plugin.h"

#ifdef HOST_KNOWS_CLAP
#include "plugin/loaded_clap.h"
#endif
#ifdef HOST_KNOWS_LV2
#include "plugin/lv2_plugin.h"
#endif

plugin_format plugin_format_of(const std::filesystem::path& file) {
    std::error_code error;
    if (std::filesystem::exists(file / "manifest.ttl", error))
        return plugin_format::lv2;
    return file.extension() == ".clap" ? plugin_format::clap : plugin_format::vst;
}

std::unique_ptr<plugin> plugin_open(const std::filesystem::path& file, library::in_the_end then) {
    switch (plugin_format_of(file)) {
#ifdef HOST_KNOWS_LV2
    case plugin_format::lv2:
        return std::make_unique<lv2_plugin>(file);
#endif
#ifdef HOST_KNOWS_CLAP
    case plugin_format::clap:
        return std::make_unique<loaded_clap>(file, then);
#endif
    default:
        return std::make_unique<vst_plugin>(file, then);
    }
}
