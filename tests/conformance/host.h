#pragma once
/// A host that writes down what it is asked.

#include "plugin/host.h"

#include <algorithm>
#include <vector>

struct recording_host {
    host_answers answer;
    std::vector<host_call> calls{};

    explicit recording_host(host_answers answers) : answer{std::move(answers)} {
        calls.reserve(4096); // audio threads call too
    }

    VstIntPtr take(const host_call& call) {
        calls.push_back(call);
        return answer(call);
    }

    [[nodiscard]] long nb_calls(VstInt32 opcode) const {
        return static_cast<long>(std::ranges::count(calls, opcode, &host_call::opcode));
    }
};
