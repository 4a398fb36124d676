#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace glintar::platform {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

/// What libxcb answers with and leaves to us to free.
template <class T>
using XcbOwned = std::unique_ptr<T, FreeDeleter>;

/// Keeps a listener until it is destroyed.
using Listening = std::shared_ptr<const void>;

/// Whom to call. A listener may go at any time, even during the call.
template <class... Arguments>
class Listeners {
public:
    [[nodiscard]] Listening add(std::function<void(Arguments...)> listener) {
        auto shared = std::make_shared<std::function<void(Arguments...)>>(std::move(listener));
        std::erase_if(listeners_, [](const auto& held) { return held.expired(); });
        listeners_.push_back(shared);
        return shared;
    }

    void call(Arguments... arguments) const {
        const auto now = listeners_;
        for (const auto& held : now) {
            if (const auto listener = held.lock()) {
                (*listener)(arguments...);
            }
        }
    }

private:
    std::vector<std::weak_ptr<std::function<void(Arguments...)>>> listeners_;
};

/// A connection of our own to the X server. Qt reads its connection in a thread, so every question and event there
/// costs two to four times as much.
///
/// Main thread only. Requests wait in a buffer until `flush` or the next question. Once the server has gone all
/// questions are answered by nothing, and requests are dropped.
class XcbConnection {
public:
    /// Null where no X server can be reached. The display is $DISPLAY if it is empty.
    [[nodiscard]] static std::unique_ptr<XcbConnection> open(const std::string& display = {});

    XcbConnection(const XcbConnection&) = delete;
    XcbConnection& operator=(const XcbConnection&) = delete;
    ~XcbConnection();

    [[nodiscard]] xcb_connection_t* get() const { return connection_; }
    [[nodiscard]] const xcb_screen_t& screen() const { return *screen_; }
    [[nodiscard]] xcb_window_t root() const { return screen_->root; }
    [[nodiscard]] int screenNumber() const { return screenNumber_; }
    [[nodiscard]] int descriptor() const { return xcb_get_file_descriptor(connection_); }
    [[nodiscard]] bool isAlive() const { return xcb_connection_has_error(connection_) == 0; }
    void flush() const { xcb_flush(connection_); }

    /// Asked for once; later without a round trip.
    [[nodiscard]] xcb_atom_t atom(std::string_view name);

    /// Masks of all who want to hear of the root window are joined: the server knows one for each connection.
    void selectRootEvents(std::uint32_t mask);

    /// Runs for every event on this connection, in their order. A listener asks the server nothing, since the others
    /// would wait for the answer: it does so from the run loop.
    [[nodiscard]] Listening onEvent(std::function<void(const xcb_generic_event_t&)> listener) {
        return listeners_.add(std::move(listener));
    }

    /// Runs when the root window's property of that name has changed; like `onEvent`.
    [[nodiscard]] Listening onRootProperty(std::string_view name, std::function<void()> listener);

    /// The first `most` numbers of a window's property; none where it is not set. One round trip.
    [[nodiscard]] std::vector<std::uint32_t> property(xcb_window_t window, std::string_view name, std::uint32_t most);

    /// Hands out what the server has sent; to be called when there is something to read. False once it has gone.
    bool readEvents();

    /// Hands out the events that came along with an answer, which will not make the descriptor readable any more.
    /// Whoever asks the server anything outside a listener calls it afterwards. No system call.
    void handOutQueued();

private:
    XcbConnection(xcb_connection_t* connection, int screenNumber);

    xcb_connection_t* connection_;
    int screenNumber_;
    const xcb_screen_t* screen_ = nullptr;
    std::uint32_t rootEvents_ = 0;
    std::unordered_map<std::string, xcb_atom_t> atoms_;
    Listeners<const xcb_generic_event_t&> listeners_;
};

}  // namespace glintar::platform
