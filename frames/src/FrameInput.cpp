// SPDX-License-Identifier: MIT
#include "frames/FrameInput.h"

#include "Bytes.h"

namespace frames {

namespace {

using Kind = OperatorEvent::Kind;
using Step = SocketAnswer::Step;

enum Part : std::uint8_t {
    EVENTS = 1,
    DATAGRAMS = 2,
    ANSWERS = 4,
    NEWS = 8,
    CLIPBOARD = 16,
    ALL_PARTS = 31
};

// Bytes of the smallest element of each list, to hold its count against the bytes that there are.
constexpr std::size_t LEAST_EVENT = 1, LEAST_DATAGRAM = 24, ANSWER = 13, NEWS_ITEM = 36;

void put(ByteWriter& to, const OperatorEvent& event) {
    to.put(event.kind);
    switch (event.kind) {
    case Kind::key:
        to.put(event.code), to.put(event.down), to.put(event.repeat);
        break;
    case Kind::modifiers:
        to.put(event.shift), to.put(event.ctrl), to.put(event.alt);
        break;
    case Kind::text:
        to.putText(event.text);
        break;
    case Kind::button:
        to.put(event.code), to.put(event.down), to.put(event.x), to.put(event.y);
        break;
    case Kind::move:
        to.put(event.x), to.put(event.y);
        break;
    case Kind::wheel:
        to.put(event.notches);
        break;
    case Kind::resize:
        to.put(event.width), to.put(event.height), to.put(event.density);
        break;
    case Kind::focus_lost:
    case Kind::left:
    case Kind::close:
        break;
    }
}

void take(ByteReader& from, OperatorEvent& event) {
    event.kind = from.takeEnum(Kind::resize, "no kind of event");
    switch (event.kind) {
    case Kind::key:
        event.code = from.take<std::int32_t>();
        event.down = from.takeBool(), event.repeat = from.takeBool();
        break;
    case Kind::modifiers:
        event.shift = from.takeBool(), event.ctrl = from.takeBool(), event.alt = from.takeBool();
        break;
    case Kind::text:
        event.text = from.takeText();
        break;
    case Kind::button:
        event.code = from.take<std::int32_t>(), event.down = from.takeBool();
        [[fallthrough]];
    case Kind::move:
        event.x = from.takeFinite<float>(), event.y = from.takeFinite<float>();
        break;
    case Kind::wheel:
        event.notches = from.takeFinite<float>();
        break;
    case Kind::resize:
        event.width = from.take<std::int32_t>(), event.height = from.take<std::int32_t>();
        event.density = from.takeFinite<float>();
        if (!isPicture(event.width, event.height, event.density)) from.fail("no size");
        break;
    case Kind::focus_lost:
    case Kind::left:
    case Kind::close:
        break;
    }
}

void put(ByteWriter& to, const Datagram& datagram) {
    to.put(datagram.socket);
    to.put(datagram.arrival);
    to.put(datagram.address);
    to.put(datagram.port);
    to.putCount(datagram.bytes.size());
    to.put(datagram.bytes.data(), datagram.bytes.size());
}

void take(ByteReader& from, Datagram& datagram) {
    datagram.socket = from.take<std::int32_t>();
    datagram.arrival = from.takeFinite<double>();
    datagram.address = from.take<std::uint32_t>();
    datagram.port = from.take<std::int32_t>();
    const std::uint32_t size = from.takeCount(1);
    if (size > MAX_DATAGRAM_SIZE) return from.fail("no datagram is so long");
    datagram.bytes.resize(size);
    from.take(datagram.bytes.data(), size);
}

void put(ByteWriter& to, const SocketAnswer& answer) {
    to.put(answer.socket);
    to.put(answer.step);
    to.put(answer.error);
    to.put(answer.value);
}

void take(ByteReader& from, SocketAnswer& answer) {
    answer.socket = from.take<std::int32_t>();
    answer.step = from.takeEnum(Step::nonblock, "no step of a socket");
    answer.error = from.take<std::int32_t>();
    answer.value = from.take<std::int32_t>();
}

void put(ByteWriter& to, const SocketNews& news) {
    to.put(news.socket);
    to.put(news.lost);
    to.put(news.receive_error);
    to.put(news.send_failures);
    to.put(news.send_failed_bytes);
    to.put(news.send_error);
}

void take(ByteReader& from, SocketNews& news) {
    news.socket = from.take<std::int32_t>();
    news.lost = from.take<std::uint64_t>();
    news.receive_error = from.take<std::int32_t>();
    news.send_failures = from.take<std::uint64_t>();
    news.send_failed_bytes = from.take<std::uint64_t>();
    news.send_error = from.take<std::int32_t>();
}

template <class T>
void putList(ByteWriter& to, const std::vector<T>& list) {
    if (list.empty()) return;
    to.putCount(list.size());
    for (const T& element : list)
        put(to, element);
}

template <class T>
void takeList(ByteReader& from, bool present, std::size_t element_size, std::vector<T>& list) {
    const std::uint32_t count = present ? from.takeCount(element_size) : 0;
    if (present && count == 0) from.fail("an empty list");
    if (count > MAX_LIST_SIZE) from.fail("a list too long for a frame");
    list.clear();
    for (std::uint32_t i = 0; i < count && from.isGood(); i++)
        take(from, list.emplace_back());
}

} // namespace

void encode(const FrameInput& input, std::vector<std::uint8_t>& bytes) {
    ByteWriter to(bytes);
    to.put(input.number);
    to.put(input.length);
    to.put(input.begin);
    const int parts = (input.events.empty() ? 0 : EVENTS) |
                      (input.datagrams.empty() ? 0 : DATAGRAMS) |
                      (input.answers.empty() ? 0 : ANSWERS) | (input.news.empty() ? 0 : NEWS) |
                      (input.clipboard ? CLIPBOARD : 0);
    to.put(static_cast<std::uint8_t>(parts));
    putList(to, input.events);
    putList(to, input.datagrams);
    putList(to, input.answers);
    putList(to, input.news);
    if (input.clipboard) to.putText(*input.clipboard);
}

bool decode(std::span<const std::uint8_t> bytes, FrameInput& input, std::string& message) {
    ByteReader from(bytes);
    input.number = from.take<std::uint64_t>();
    input.length = from.takeFinite<float>();
    if (input.length < 0) from.fail("a negative length");
    input.begin = from.takeFinite<double>();
    if (input.begin < 0 || input.begin > MAX_BEGIN) from.fail("no time of a run");
    const auto parts = from.take<std::uint8_t>();
    if (parts > ALL_PARTS) from.fail("an unknown part");
    takeList(from, parts & EVENTS, LEAST_EVENT, input.events);
    takeList(from, parts & DATAGRAMS, LEAST_DATAGRAM, input.datagrams);
    takeList(from, parts & ANSWERS, ANSWER, input.answers);
    takeList(from, parts & NEWS, NEWS_ITEM, input.news);
    input.clipboard.reset();
    if (parts & CLIPBOARD) input.clipboard = from.takeText();
    if (from.isGood() && !from.isAtEnd()) from.fail("goes on behind the last part");
    message = from.getMessage();
    return from.isGood();
}

} // namespace frames
