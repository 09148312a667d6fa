#pragma once
/// A JACK server of a test's own, without a sound card, and clients beside the one under test.

#include "tests/host/comes_true.h"
#include "tests/host/running_process.h"

#include <jack/jack.h>
#include <jack/midiport.h>
#include <vector>

class jack_server {
public:
    explicit jack_server(int block_frames)
        : server_{{"jackd", "-n", name, "-r", "-S", "-t", "2000", "-d", "dummy", "-r", "48000",
                   "-p", std::to_string(block_frames)}} {
        setenv("JACK_DEFAULT_SERVER", name.c_str(), 1);
        setenv("JACK_NO_AUDIO_RESERVATION", "1", 1);
        if (jack_client_t* p_client = open("first"))
            jack_client_close(p_client);
    }
    /// In order: a machine has room for eight servers, and one that is killed keeps its place.
    ~jack_server() {
        server_.end(SIGTERM);
        for (const auto& file : std::filesystem::directory_iterator{"/dev/shm"})
            if (file.path().filename().string().find("_" + name + "_") != std::string::npos)
                std::filesystem::remove(file);
    }

    /// Null if the server does not come up within some seconds.
    static jack_client_t* open(const char* client) {
        jack_set_error_function([](const char*) {});
        jack_client_t* p_client = nullptr;
        (void)comes_true(
            [&] { return (p_client = jack_client_open(client, JackNoStartServer, nullptr)); });
        return p_client;
    }

private:
    static inline const std::string name = "tindelwax-test-" + std::to_string(getpid());
    running_process server_;
};
