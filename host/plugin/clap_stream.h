#pragma once
/// A CLAP plug-in's state on its way from or to its host, some bytes at a time. All is [setup].

#include "clap/interface.h"

#include <algorithm>
#include <cstddef>
#include <string>

struct clap_stream {
    std::string bytes{};
    std::size_t piece = std::string::npos;    ///< bytes at once, at most
    std::size_t fails_at = std::string::npos; ///< bytes that are written or read, and then no more
    std::size_t done = 0;                     ///< bytes that are read

    [[nodiscard]] clap_istream input() { return {this, read}; }
    [[nodiscard]] clap_ostream output() { return {this, write}; }

    static std::int64_t read(const clap_istream* stream, void* buffer, std::uint64_t size) {
        auto& self = *static_cast<clap_stream*>(stream->ctx);
        if (self.done >= self.fails_at)
            return -1;
        const std::size_t nb = self.bytes.copy(static_cast<char*>(buffer),
                                               std::min<std::size_t>(size, self.piece), self.done);
        self.done += nb;
        return static_cast<std::int64_t>(nb);
    }

    static std::int64_t write(const clap_ostream* stream, const void* buffer, std::uint64_t size) {
        auto& self = *static_cast<clap_stream*>(stream->ctx);
        if (self.bytes.size() >= self.fails_at)
            return -1;
        const auto nb = std::min<std::size_t>(size, self.piece);
        self.bytes.append(static_cast<const char*>(buffer), nb);
        return static_cast<std::int64_t>(nb);
    }
};
