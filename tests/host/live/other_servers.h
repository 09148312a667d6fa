#pragma once
/// Other sound servers of a test's own, without a sound card.

#include "tests/host/comes_true.h"
#include "tests/host/running_process.h"
#include "tests/temporary_folder.h"

/// With JACK's interface, in a library of its own.
class pipewire_server {
public:
    static constexpr int block_frames = 256;
    static constexpr const char* library_folder = "/usr/lib/x86_64-linux-gnu/pipewire-0.3/jack";

    explicit pipewire_server(const temporary_folder& home) {
        setenv("PIPEWIRE_RUNTIME_DIR", home.path.c_str(), 1);
        file_write(home / "server.conf", configuration);
        process_.emplace(std::vector<std::string>{"pipewire", "-c", home / "server.conf"});
        (void)comes_true([&home] { return std::filesystem::exists(home / "pipewire-0"); });
    }

private:
    static constexpr std::string_view configuration = R"(
context.properties = {
    core.daemon = true core.name = pipewire-0 support.dbus = false
    default.clock.rate = 48000 default.clock.quantum = 256
}
context.spa-libs = { support.* = support/libspa-support }
context.modules = [
    { name = libpipewire-module-protocol-native } { name = libpipewire-module-metadata }
    { name = libpipewire-module-spa-node-factory } { name = libpipewire-module-client-node }
    { name = libpipewire-module-access } { name = libpipewire-module-link-factory }
]
context.objects = [ {
    factory = spa-node-factory
    args = {
        factory.name = support.node.driver node.name = Dummy-Driver
        node.group = pipewire.dummy priority.driver = 20000
    }
} ]
)";

    std::optional<running_process> process_{};
};

/// Where ALSA's default device leads to, as on many desktops; a file gets the same samples.
class pulse_server {
public:
    explicit pulse_server(const temporary_folder& home) {
        const std::string socket = home / "socket";
        for (const auto& [name, value] : {std::pair{"HOME", home.path.string()},
                                          {"XDG_RUNTIME_DIR", home.path.string()},
                                          {"PULSE_SERVER", socket},
                                          {"ALSA_CONFIG_PATH", home / "alsa.conf"}})
            setenv(name, value.c_str(), 1);
        file_write(home / "alsa.conf",
                   "pcm.default { type file slave.pcm { type pulse } format raw file \""
                       + (home / "heard") + "\" }\nctl.default { type pulse }\n");
        process_.emplace(std::vector<std::string>{
            "pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--log-target=null", "-L",
            "module-native-protocol-unix auth-anonymous=1 socket=" + socket, "-L",
            "module-null-sink rate=48000"});
        (void)comes_true([&socket] { return std::filesystem::exists(socket); });
    }
    ~pulse_server() { process_->end(SIGTERM); }

private:
    std::optional<running_process> process_{};
};
