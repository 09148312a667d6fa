#include "command/interrupt.h"

#include <csignal>
#include <initializer_list>

namespace {
volatile std::sig_atomic_t is_requested = 0;
}

void interrupt_catch() {
    for (const int signal_number : {SIGINT, SIGTERM})
        std::signal(signal_number, [](int) { is_requested = 1; });
}

bool interrupt_requested() { return is_requested != 0; }
