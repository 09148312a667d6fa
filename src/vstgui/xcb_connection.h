#pragma once
/// A connection to an X server that may stop to answer: after it is open, nobody waits for it
/// without bound. Two things see to that. An answer is awaited for a quarter of a second, and not
/// at all once one has been late, until it comes. And as long as a sender lets the server answer
/// what it sent before it sends more than a piece, there is always room to send: writing never
/// waits.
///
/// It is of the panel's own: the host's toolkit sees none of these events, and no error of ours
/// reaches its handlers. All is [ui].

#include <cstddef>
#include <cstdlib>
#include <deque>
#include <memory>
#include <optional>
#include <xcb/xcb.h>

class XcbConnection {
public:
    static constexpr std::size_t piece_bytes = 1 << 16; ///< to send at a time, at most

    struct freed {
        void operator()(void* reply) const { std::free(reply); }
    };
    template <typename Reply>
    using reply_ptr = std::unique_ptr<Reply, freed>;
    using event_ptr = reply_ptr<xcb_generic_event_t>;

    XcbConnection();

    [[nodiscard]] xcb_connection_t* get() const { return connection.get(); }
    [[nodiscard]] bool isLost() const { return xcb_connection_has_error(get()) != 0; }

    /// Asks nothing in particular: the answer says that the server has read all before it. Returns
    /// the question's number.
    [[nodiscard]] unsigned askWhetherRead();

    /// Sends what was asked. Returns nothing while the answer to that number has not come, and a
    /// null pointer for an answer that brings an error or never will come.
    [[nodiscard]] std::optional<reply_ptr<void>> answerTo(unsigned question);

    /// Reads what has come; returns how many events that are, with those not taken yet.
    std::size_t readEvents();
    event_ptr takeEvent(); ///< null when there is none

private:
    struct disconnected {
        void operator()(xcb_connection_t* opened) const { xcb_disconnect(opened); }
    };

    std::unique_ptr<xcb_connection_t, disconnected> connection;
    std::deque<event_ptr> events{}; ///< that came while an answer was awaited
    bool late = false;              ///< the answer that was awaited last
};
