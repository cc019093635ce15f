// SPDX-License-Identifier: MIT
#include "ig/net/SocketUDP.h"

#include "ig/base/jLog.h"
#include "program/Clock.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <linux/sock_diag.h>
#include <memory>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace ig {

using Step = frames::SocketAnswer::Step;

namespace {

// Room for about 900 host records: what a host at 100 records per second sends in 9 s, and a host
// at 1,000 per second in nearly one, so that a stall of the channel loses nothing.
constexpr int LEAST_RECEIVE_BUFFER = 1 << 20;

// A sender that has been silent for so long is not one of several that send at a time.
constexpr double SENDER_PAUSE = 1; // s

jVector<SocketUDP*>& openSockets() {
    static jVector<SocketUDP*> sockets;
    return sockets;
}

/// The run that the sockets belong to.
struct Run {
    bool offline = false;
    int created = 0;                           ///< sockets
    std::vector<frames::SocketAnswer> answers; ///< online: since the last `collect`; offline: of
                                               ///< the log, those that have not been asked for
};

Run& run() {
    static Run the_run;
    return the_run;
}

jVector<RefusedPort>& refusedPorts() {
    static jVector<RefusedPort> ports;
    return ports;
}

void forgetRefusal(int port) {
    jVector<RefusedPort>& refused = refusedPorts();
    for (int i = refused.size() - 1; i >= 0; i--)
        if (refused[i].port == port) refused.remove(i);
}

sockaddr_in makeAddress(std::uint32_t address, int port) {
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_addr.s_addr = address;
    result.sin_port = htons(static_cast<std::uint16_t>(port));
    return result;
}

// Address of a dotted text, in network byte order; 0 when it is none. No names: asking for one can
// take seconds, and no operation of a socket may wait on the network.
std::uint32_t parseAddress(const jString& ip) {
    in_addr address{};
    if (ip == "localhost") return htonl(INADDR_LOOPBACK);
    return inet_pton(AF_INET, ip.c_str(), &address) == 1 ? address.s_addr : 0;
}

/// When the system received a message, on the calendar's clock; `otherwise` when it doesn't tell.
std::int64_t getStamp_ns(msghdr& message, std::int64_t otherwise) {
    for (cmsghdr* c = CMSG_FIRSTHDR(&message); c; c = CMSG_NXTHDR(&message, c)) {
        if (c->cmsg_level != SOL_SOCKET || c->cmsg_type != SCM_TIMESTAMPNS) continue;
        timespec stamp{};
        std::memcpy(&stamp, CMSG_DATA(c), sizeof stamp);
        return stamp.tv_sec * program::NS_PER_SECOND + stamp.tv_nsec;
    }
    return otherwise;
}

/// From the calendar's clock to the steady one. Both are read at once, as far as that can be had:
/// whoever is interrupted between them tries again.
std::int64_t getClockOffset_ns() {
    constexpr std::int64_t AT_ONCE_NS = 5000;
    std::int64_t best_ns = std::numeric_limits<std::int64_t>::max(), offset_ns = 0;
    for (int tries = 0; tries < 5 && best_ns > AT_ONCE_NS; tries++) {
        const std::int64_t before_ns = program::steadyNow_ns();
        const std::int64_t wall_ns = program::wallNow_ns();
        const std::int64_t apart_ns = program::steadyNow_ns() - before_ns;
        if (apart_ns >= best_ns) continue;
        best_ns = apart_ns;
        offset_ns = before_ns + apart_ns / 2 - wall_ns;
    }
    return offset_ns;
}

bool isPort(int port) { return port >= 1 && port <= 65535; }

// size × count, or more than any datagram when the product doesn't fit.
std::size_t product(std::size_t size, std::size_t count) {
    std::size_t bytes = 0;
    return __builtin_mul_overflow(size, count, &bytes) ? std::numeric_limits<int>::max() : bytes;
}

} // namespace

SocketUDP::~SocketUDP() { close(); }

// ------------------------------------------------------------------ setting up

void SocketUDP::setOnline() {
    run() = {};
    refusedPorts().clear();
}

void SocketUDP::setOffline() {
    run() = {true, 0, {}};
    refusedPorts().clear();
}

void SocketUDP::addAnswers(const std::vector<frames::SocketAnswer>& answers) {
    run().answers.insert(run().answers.end(), answers.begin(), answers.end());
}

/// A step of setting up, which `ask_system` takes: it may set the value, and answers false with
/// errno when it failed. So does this; offline it answers what the log says, or that it worked.
template <class Ask>
bool SocketUDP::ask(Step step, int& value, Ask&& ask_system) {
    frames::SocketAnswer answer{m_number, step, 0, 0};
    std::vector<frames::SocketAnswer>& answers = run().answers;
    if (!run().offline) {
        if (!ask_system(answer.value)) answer.error = errno;
        answers.push_back(answer);
    } else if (const auto logged = std::ranges::find_if(
                   answers, [&](const auto& a) { return a.socket == m_number && a.step == step; });
               logged != answers.end()) {
        answer = *logged;
        answers.erase(logged);
    }
    value = answer.value;
    errno = answer.error;
    return answer.error == 0;
}

bool SocketUDP::create() {
    close();
    m_number = run().created++;
    m_open = ask(Step::create, m_port, [this](int&) {
        m_descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        return m_descriptor >= 0;
    });
    if (!m_open) return fail("create");
    m_drops = 0;
    m_floor_ns = program::steadyNow_ns();
    openSockets().append(this);
    return true;
}

bool SocketUDP::bind(int port) {
    return isPort(port) ? bindTo(port) : refuse(port, "not a port, 1 to 65535");
}

bool SocketUDP::bind() { return bindTo(0); }

bool SocketUDP::bindTo(int port) {
    const bool bound = ask(Step::bind, m_port, [&](int& local_port) {
        sockaddr_in local = makeAddress(htonl(INADDR_ANY), port);
        socklen_t length = sizeof local;
        auto* const address = reinterpret_cast<sockaddr*>(&local);
        if (::bind(m_descriptor, address, length) != 0 ||
            getsockname(m_descriptor, address, &length) != 0)
            return false;
        local_port = ntohs(local.sin_port);
        return true;
    });
    if (!bound) return refuse(port, std::strerror(errno));
    forgetRefusal(port);
    return true;
}

bool SocketUDP::refuse(int port, const char* reason) const {
    jLog::error("SocketUDP::bind: local port %d: %s", port, reason);
    forgetRefusal(port);
    refusedPorts().append({port, reason});
    return false;
}

bool SocketUDP::recv(int size) {
    const int wanted = std::max(size, LEAST_RECEIVE_BUFFER);
    m_receives = ask(Step::receive, m_statistics.receive_buffer, [&](int& granted) {
        // The first form exceeds the system's limit and needs a privilege; the second takes what
        // the limit allows.
        if (setsockopt(m_descriptor, SOL_SOCKET, SO_RCVBUFFORCE, &wanted, sizeof wanted) != 0 &&
            setsockopt(m_descriptor, SOL_SOCKET, SO_RCVBUF, &wanted, sizeof wanted) != 0)
            return false;
        socklen_t length = sizeof granted;
        getsockopt(m_descriptor, SOL_SOCKET, SO_RCVBUF, &granted, &length);
        const int on = 1; // without stamps a datagram arrives when it is taken from the system
        setsockopt(m_descriptor, SOL_SOCKET, SO_TIMESTAMPNS, &on, sizeof on);
        return true;
    });
    if (!m_receives) return fail("recv");
    m_statistics.asked_buffer = 2 * wanted; // the system adds as much again for itself
    return true;
}

bool SocketUDP::send(int size) {
    int none = 0;
    return ask(Step::send, none,
               [&](int&) {
                   int granted = 0;
                   socklen_t length = sizeof granted;
                   if (getsockopt(m_descriptor, SOL_SOCKET, SO_SNDBUF, &granted, &length) != 0)
                       return false;
                   return granted >= size ||
                          setsockopt(m_descriptor, SOL_SOCKET, SO_SNDBUF, &size, sizeof size) == 0;
               }) ||
           fail("send");
}

bool SocketUDP::nonblock() {
    int none = 0;
    return ask(Step::nonblock, none,
               [this](int&) {
                   const int flags = fcntl(m_descriptor, F_GETFL);
                   return flags >= 0 && fcntl(m_descriptor, F_SETFL, flags | O_NONBLOCK) == 0;
               }) ||
           fail("nonblock");
}

// Reports the system's reason for the failure of a set-up step.
bool SocketUDP::fail(const char* operation) const {
    jLog::error("SocketUDP::%s: %s", operation, std::strerror(errno));
    return false;
}

bool SocketUDP::setSendIP(const jString& ip) {
    const std::uint32_t address = parseAddress(ip);
    if (!address) {
        jLog::error("SocketUDP::setSendIP: \"%s\" is not an address", ip.c_str());
        m_statistics.refused_destination = ip;
        return false;
    }
    m_send_address = address;
    m_statistics.refused_destination.clear();
    return true;
}

bool SocketUDP::setSendPort(int port) {
    if (!isPort(port)) {
        jLog::error("SocketUDP::setSendPort: %d is not a port", port);
        return false;
    }
    m_send_port = port;
    return true;
}

// ------------------------------------------------------------------ receiving

/// What one round through all sockets shares.
struct SocketUDP::Collection {
    frames::FrameInput& input;
    double run_start;       ///< s on the steady clock
    std::int64_t begin_ns;  ///< of the round, on the steady clock
    std::int64_t offset_ns; ///< from the calendar's clock to the steady one
};

void SocketUDP::collect(frames::FrameInput& input, double run_start) {
    if (run().offline) return;
    input.answers.insert(input.answers.end(), run().answers.begin(), run().answers.end());
    run().answers.clear();
    Collection collection{input, run_start, program::steadyNow_ns(), getClockOffset_ns()};
    for (SocketUDP* socket : openSockets())
        socket->collectFrom(collection);
}

void SocketUDP::collectFrom(Collection& collection) {
    frames::SocketNews news = std::exchange(m_news, {.send_error = m_news.send_error});
    news.socket = m_number;
    if (m_receives) {
        news.receive_error = collectDatagrams(collection);
        news.lost = countLost();
    }
    const bool works_again = m_receive_error && !news.receive_error;
    m_receive_error = news.receive_error;
    const bool send_changed = std::exchange(m_told_send_error, news.send_error) != news.send_error;
    if (news.lost || news.receive_error || works_again || news.send_failures || send_changed)
        collection.input.news.push_back(news);
}

/// Answers 0, or errno when receiving fails.
int SocketUDP::collectDatagrams(Collection& collection) {
    static std::vector<std::uint8_t> buffer(frames::MAX_DATAGRAM_SIZE);
    std::size_t room = DRAIN - std::min<std::size_t>(m_inbox.size() - m_taken, DRAIN);
    while (room > 0) {
        sockaddr_in from{};
        iovec part{buffer.data(), buffer.size()};
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(timespec))];
        msghdr message{};
        message.msg_name = &from;
        message.msg_namelen = sizeof from;
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        const ssize_t length = recvmsg(m_descriptor, &message, MSG_DONTWAIT);
        if (length < 0 && errno == EINTR) continue;
        if (length < 0) {
            if (errno != EAGAIN && errno != EWOULDBLOCK) return errno;
            m_floor_ns = std::max(m_floor_ns, collection.begin_ns);
            return 0;
        }
        const std::int64_t now_ns = program::steadyNow_ns();
        const std::int64_t stamp_ns = getStamp_ns(message, now_ns - collection.offset_ns);
        m_floor_ns = std::min(std::max(stamp_ns + collection.offset_ns, m_floor_ns), now_ns);
        collection.input.datagrams.push_back({m_number,
                                              program::inSeconds(m_floor_ns) - collection.run_start,
                                              from.sin_addr.s_addr,
                                              ntohs(from.sin_port),
                                              {buffer.begin(), buffer.begin() + length}});
        room--;
    }
    return 0;
}

/// What the system had no room for since the last time; it counts as long as the descriptor is
/// open.
std::uint32_t SocketUDP::countLost() {
    std::uint32_t counts[SK_MEMINFO_VARS] = {};
    socklen_t length = sizeof counts;
    if (getsockopt(m_descriptor, SOL_SOCKET, SO_MEMINFO, counts, &length) != 0) return 0;
    return counts[SK_MEMINFO_DROPS] - std::exchange(m_drops, counts[SK_MEMINFO_DROPS]);
}

void SocketUDP::deliver(const frames::FrameInput& input) {
    for (SocketUDP* socket : openSockets()) {
        std::vector<frames::Datagram>& inbox = socket->m_inbox;
        inbox.erase(inbox.begin(), inbox.begin() + static_cast<long>(socket->m_taken));
        socket->m_taken = 0;
        for (const frames::Datagram& datagram : input.datagrams)
            if (datagram.socket == socket->m_number) inbox.push_back(datagram);
        for (const frames::SocketNews& news : input.news)
            if (news.socket == socket->m_number) socket->hear(news);
    }
}

void SocketUDP::hear(const frames::SocketNews& news) {
    SocketStatistics& s = m_statistics;
    s.lost += news.lost;
    s.receive_error = news.receive_error;
    if (news.receive_error) s.receive_failures++;
    s.send_failures += news.send_failures;
    s.datagrams_sent -= std::min(s.datagrams_sent, news.send_failures);
    s.bytes_sent -= std::min(s.bytes_sent, news.send_failed_bytes);
    s.send_error = m_refusal = news.send_error;
}

int SocketUDP::read(void* buffer, std::size_t size, std::size_t count) {
    const std::size_t room = product(size, count);
    if (!isOpened() || !buffer || !room) return 0;
    while (m_in_a_row < DRAIN && m_taken < m_inbox.size()) {
        const frames::Datagram& datagram = m_inbox[m_taken++];
        m_in_a_row++;
        if (m_allowed_sender && datagram.address != m_allowed_sender) {
            m_statistics.filtered++;
        } else if (datagram.bytes.empty()) {
            m_statistics.empty++;
        } else {
            noteReceived(datagram);
            const std::size_t length = std::min(datagram.bytes.size(), room);
            if (length < datagram.bytes.size()) m_statistics.truncated++;
            std::memcpy(buffer, datagram.bytes.data(), length);
            return static_cast<int>(length);
        }
    }
    return endDrain();
}

/// The answer that ends a drain: 0 when nothing waits or enough was taken, −1 when receiving fails.
int SocketUDP::endDrain() {
    m_in_a_row = 0;
    return m_statistics.receive_error ? -1 : 0;
}

void SocketUDP::noteReceived(const frames::Datagram& datagram) {
    const int length = static_cast<int>(datagram.bytes.size());
    SocketStatistics& s = m_statistics;
    s.last_received = datagram.arrival;
    if (s.datagrams_received == 0) s.first_received = s.last_received;
    s.smallest = s.datagrams_received ? std::min(s.smallest, length) : length;
    s.largest = std::max(s.largest, length);
    s.datagrams_received++;
    s.bytes_received += length;
    noteSender({datagram.address, datagram.port, s.last_received});
    if (s.expected_size == 0 || length == s.expected_size) return;
    (length < s.expected_size ? s.too_short : s.too_long)++;
    s.wrong_size = length;
    s.wrong_sender = s.senders[0];
}

/// Puts a sender in front of those known, of which the one that was heard longest ago goes.
void SocketUDP::noteSender(const SocketSender& sender) {
    SocketStatistics& s = m_statistics;
    SocketSender* const end = s.senders + SocketStatistics::SENDERS;
    SocketSender* place = std::find(s.senders, end, sender);
    if (place != s.senders && s.senders[0].port != 0) {
        const bool recent =
            place != end && sender.last_received - place->last_received < SENDER_PAUSE;
        (recent ? s.interleaved : s.taken_over)++;
    }
    std::rotate(s.senders, place == end ? end - 1 : place, place == end ? end : place + 1);
    s.senders[0] = sender;
}

void SocketUDP::complain(const SocketComplaint& complaint) {
    m_statistics.implausible++;
    m_statistics.complaint = complaint;
    m_statistics.complaint.sender = m_statistics.senders[0];
}

// ------------------------------------------------------------------ sending

int SocketUDP::write(const void* data, std::size_t size, std::size_t count) {
    const std::size_t bytes = product(size, count);
    if (!bytes) return 0;
    if (!data || !isOpened()) return failWrite(EBADF);
    if (!m_send_address || !m_send_port) return failWrite(EDESTADDRREQ);
    if (bytes > frames::MAX_DATAGRAM_SIZE) return failWrite(EMSGSIZE);
    SocketStatistics& s = m_statistics;
    s.send_error = m_refusal;
    s.datagrams_sent++;
    s.bytes_sent += bytes;
    m_sent.add(data, bytes);
    s.sent_digest = m_sent.get();
    if (!run().offline) transmit(data, bytes);
    return static_cast<int>(bytes);
}

void SocketUDP::transmit(const void* data, std::size_t bytes) {
    const sockaddr_in to = makeAddress(m_send_address, m_send_port);
    ssize_t sent = 0;
    do {
        sent =
            sendto(m_descriptor, data, bytes, 0, reinterpret_cast<const sockaddr*>(&to), sizeof to);
    } while (sent < 0 && errno == EINTR);
    m_news.send_error = sent < 0 ? errno : 0;
    if (sent >= 0) return;
    m_news.send_failures++;
    m_news.send_failed_bytes += bytes;
}

int SocketUDP::failWrite(int error) {
    m_statistics.send_failures++;
    m_statistics.send_error = error;
    return -1;
}

void SocketUDP::close() {
    if (m_descriptor >= 0) ::close(m_descriptor);
    if (m_open) openSockets().remove(openSockets().find(this));
    m_open = m_receives = false;
    m_descriptor = -1;
    m_port = 0;
    m_in_a_row = 0;
    m_inbox.clear();
    m_taken = 0;
    m_news = {};
    m_receive_error = m_told_send_error = m_refusal = 0;
}

void SocketUDP::release() {
    close();
    m_send_address = 0;
    m_send_port = 0;
    m_allowed_sender = 0;
    m_statistics = {};
    m_sent = {};
}

bool SocketUDP::setAllowedSender(const jString& ip) {
    const std::uint32_t address = ip.empty() ? 0 : parseAddress(ip);
    if (!ip.empty() && !address) {
        jLog::error("SocketUDP::setAllowedSender: \"%s\" is not an address", ip.c_str());
        return false;
    }
    m_allowed_sender = address;
    return true;
}

const jVector<SocketUDP*>& SocketUDP::getOpenSockets() { return openSockets(); }

const jVector<RefusedPort>& SocketUDP::getRefusedPorts() { return refusedPorts(); }

jString SocketSender::getText() const {
    if (port == 0) return {};
    char text[INET_ADDRSTRLEN] = "";
    inet_ntop(AF_INET, &address, text, sizeof text);
    return jString(text) + ":" + ToString(port);
}

} // namespace ig
