// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// What frames take in: all that comes to the application from outside between two frames, as one
/// value. Whoever gives the same values to the same application gets the same frames, to the last
/// bit; so they are logged (`FrameLog.h`), and played again.
///
/// Times are seconds since the start of the run, on the steady clock.
namespace frames {

/// The most that a UDP datagram carries over IPv4, bytes.
inline constexpr std::size_t MAX_DATAGRAM_SIZE = 65507;

/// A datagram that had come to a socket.
struct Datagram {
    int socket = 0;            ///< its number: sockets count from 0 in the order of creation
    double arrival = 0;        ///< by the system's stamp; may be before the start of the run
    std::uint32_t address = 0; ///< of the sender, network byte order
    int port = 0;              ///< of the sender
    std::vector<std::uint8_t> bytes = {}; ///< MAX_DATAGRAM_SIZE at most

    bool operator==(const Datagram&) const = default;
};

/// What the system answered to a step of setting a socket up. The first frame's input holds those
/// of the start, before the first frame.
struct SocketAnswer {
    enum class Step : std::uint8_t { create, bind, receive, send, nonblock };

    int socket = 0;
    Step step = Step::create;
    int error = 0; ///< errno; 0: it worked
    int value = 0; ///< bind: the local port; receive: bytes reserved for waiting datagrams

    bool operator==(const SocketAnswer&) const = default;
};

/// What the system told of a socket since the last frame.
struct SocketNews {
    int socket = 0;
    std::uint64_t lost = 0;          ///< datagrams for which it had no room left
    int receive_error = 0;           ///< errno of taking datagrams; 0: that works, perhaps again
    std::uint64_t send_failures = 0; ///< datagrams that it refused to send
    std::uint64_t send_failed_bytes = 0; ///< in those
    int send_error = 0;                  ///< errno of the last datagram to send; 0: it went out

    bool operator==(const SocketNews&) const = default;
};

/// What the operator did at keyboard and mouse, and what became of the window. Fields that a kind
/// doesn't name keep their defaults.
struct OperatorEvent {
    enum class Kind : std::uint8_t {
        key,       ///< `code`, `down`, `repeat`: the key is being held
        modifiers, ///< `shift`, `ctrl`, `alt`: those that are down, before a key or a button
        text,      ///< `text`, UTF-8
        button,    ///< `code` (0 left, 1 right, 2 middle), `down`, `x`, `y`
        move,      ///< `x`, `y`
        wheel,     ///< `notches`
        focus_lost,
        left,  ///< the mouse left the window
        close, ///< the operator wants the window closed
        resize ///< `width`, `height`, `density`
    };

    Kind kind = Kind::key;
    int code = 0; ///< of the key or the button
    bool down = false;
    bool repeat = false;
    bool shift = false;
    bool ctrl = false;
    bool alt = false;
    float x = 0; ///< pixels of the picture from the top left corner
    float y = 0;
    float notches = 0; ///< positive when rolled up
    int width = 0;     ///< pixels
    int height = 0;
    float density = 0; ///< pixels per 1/96 inch
    std::string text = {};

    bool operator==(const OperatorEvent&) const = default;
};

/// All that one frame takes in. The settings in force are no part of it: nothing changes them in
/// flight, so that they stand once, in the log's head (`LogHead::options`).
struct FrameInput {
    std::uint64_t number = 0; ///< of the frame, from 0
    float length = 0;         ///< of the frame, s, 0 or more
    double begin = 0;         ///< when it began, 0 to MAX_BEGIN
    std::vector<OperatorEvent> events = {};
    std::vector<Datagram> datagrams = {}; ///< of each socket in the order of arrival
    std::vector<SocketAnswer> answers = {};
    std::vector<SocketNews> news = {}; ///< of sockets that have some
    /// What the window system offers, in a frame in which a paste asks for it.
    std::optional<std::string> clipboard = {};

    bool operator==(const FrameInput&) const = default;
};

/// The most that the bytes of one input may be: more than the waiting datagrams of a socket can be.
inline constexpr std::size_t MAX_INPUT_SIZE = 64 << 20;
/// The most pixels that a picture may be wide or high. A window can be drawn as small as one.
inline constexpr int MAX_SIDE = 16384;
/// Pixels per 1/96 inch that a display may have.
inline constexpr float LEAST_DENSITY = 0.05f, MAX_DENSITY = 100;
/// Whether a picture can be of that size and density.
constexpr bool isPicture(int width, int height, float density) {
    return width >= 1 && width <= MAX_SIDE && height >= 1 && height <= MAX_SIDE &&
           density >= LEAST_DENSITY && density <= MAX_DENSITY;
}
/// The latest that a frame may begin, s: three years into the run.
inline constexpr double MAX_BEGIN = 1e8;
/// The most elements that each of its lists may have.
inline constexpr std::size_t MAX_LIST_SIZE = 65536;

/// Appends the input as bytes. Numbers are little-endian, nothing is padded; lists and texts begin
/// with their uint32 count. A frame into which nothing comes takes 21 bytes:
///
///     uint64  number
///     float   length
///     double  begin
///     uint8   bits: which of the parts follow, in this order
///        1  events: uint8 kind and its fields as listed there, booleans as uint8
///        2  datagrams: int32 socket, double arrival, uint32 address, int32 port, bytes
///        4  answers: int32 socket, uint8 step, int32 error, int32 value
///        8  news: int32 socket, uint64 lost, int32 error, uint64 failures, bytes, int32 error
///       16  clipboard: text
void encode(const FrameInput& input, std::vector<std::uint8_t>& to);

/// Reads what `encode` wrote, all of it. False with `message`, which tells what is wrong at which
/// byte, for anything else, also for numbers that no frame has; `input` is of no use then.
/// Takes no more memory than a small multiple of the bytes.
bool decode(std::span<const std::uint8_t> bytes, FrameInput& input, std::string& message);

} // namespace frames
