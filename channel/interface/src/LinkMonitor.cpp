// SPDX-License-Identifier: MIT
#include "channel/interface/LinkMonitor.h"

#include "channel/interface/Texts.h"
#include "ig/base/jLog.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

using namespace ig;

namespace {

/// A pause that a host makes every now and then, s. One that sends less often than that is given
/// more, but is missed within a few seconds too.
constexpr double PAUSE = 0.7, LONGEST_PAUSE = 3, PAUSE_IN_PERIODS = 2.5;
constexpr double SEND_AT_A_TIME = 1;     ///< s within which senders count as sending at a time
constexpr std::size_t MOST_WARNINGS = 8; ///< of one kind with different causes, while it is on
constexpr std::size_t MOST_EVENTS = 16;  ///< in the summary

struct Words {
    const char* key;    ///< of the picture's text
    const char* text;   ///< of the console's; {1}, {2}, ... are filled in
    const char* remedy; ///< for the log
};
const Words WORDS[] = {
    {"link.not_listening", "not listening on {1}: {2}",
     "; no record can arrive: free the port or configure another one, then start again"},
    {"link.no_host", "no host yet on port {1}{2}", ""},
    {"link.silent", "host silent for {1} s", ""},
    {"link.receive_failing", "receiving fails: {1}", ""},
    {"link.senders", "{1} senders: {2}",
     "; their records are applied in turn: stop all but one, or take one address only with "
     "--allow-sender"},
    {"link.wrong_size", "{1} bytes, expected {2}, from {3}",
     "; what is missing counts as 0, what is too much is cut"},
    {"link.implausible", "{1} {2} from {3} is implausible{4}", ""},
    {"link.lost", "{1} records lost", "; they came faster than frames take them"},
    {"link.taken_over", "records now from {1}, before from {2}", ""},
    {"link.no_destination", "no feedback: \"{1}\" is not an address",
     "; a dotted IPv4 address or localhost is needed"},
    {"link.send_failing", "feedback fails: {1}", ""},
};

std::string number(double value) {
    char text[32];
    const bool whole = std::abs(value) < 1e15 && std::floor(value) == value;
    std::snprintf(text, sizeof text, whole ? "%.0f" : "%g", value);
    return text;
}

std::string wholeSeconds(double seconds) {
    return std::to_string(std::max(1L, std::lround(std::floor(seconds))));
}

/// Those that send at a time, always in the same order.
std::vector<std::string> liveSenders(const SocketStatistics& in) {
    std::vector<std::string> texts;
    for (const SocketSender& sender : in.senders)
        if (sender.port != 0 && in.last_received - sender.last_received < SEND_AT_A_TIME)
            texts.emplace_back(sender.getText().c_str());
    std::sort(texts.begin(), texts.end());
    return texts;
}

std::string join(const std::vector<std::string>& texts, const char* between) {
    std::string all;
    for (const std::string& text : texts)
        all += (all.empty() ? "" : between) + text;
    return all;
}

} // namespace

LinkSample LinkSample::read() {
    LinkSample sample;
    const SocketUDP *in = nullptr, *out = nullptr;
    for (const SocketUDP* socket : SocketUDP::getOpenSockets())
        for (const SocketUDP** place : {socket->getStatistics().receive_buffer > 0 ? &in : &out})
            if (!*place) *place = socket;
    if (out) sample.out = out->getStatistics();
    if (in) {
        sample.listening = true;
        sample.port = in->getPort();
        sample.in = in->getStatistics();
    } else if (const auto& refused = SocketUDP::getRefusedPorts(); !refused.empty()) {
        sample.port = refused.back().port;
        sample.refusal = refused.back().reason.c_str();
    }
    return sample;
}

// ------------------------------------------------------------------ what is going on

void LinkMonitor::update(const LinkSample& sample, double now) {
    m_sample = sample;
    m_now = now;
    tellRoom();
    watchStates();
    watchMishaps();
}

void LinkMonitor::watchStates() {
    const SocketStatistics &in = m_sample.in, &out = m_sample.out;
    const bool heard = in.datagrams_received > 0;
    state(NOT_LISTENING, m_sample.port != 0 && !m_sample.listening, [&] {
        return Values{std::to_string(m_sample.port), m_sample.refusal};
    });
    state(NO_HOST, m_sample.listening && !heard, [&] {
        const std::string others =
            in.filtered ? ", " + std::to_string(in.filtered) + " datagrams from others" : "";
        return Values{std::to_string(m_sample.port), others};
    });
    state(SILENT, heard && getAge() > allowedPause(), [&] {
        m_silent_since = in.last_received;
        m_longest_silence = std::max(m_longest_silence, getAge());
        return Values{wholeSeconds(getAge())};
    });
    state(RECEIVE_FAILING, in.receive_error != 0,
          [&] { return Values{std::strerror(in.receive_error)}; });
    const bool refused = !out.refused_destination.empty();
    state(NO_DESTINATION, refused, [&] { return Values{out.refused_destination.c_str()}; });
    state(SEND_FAILING, out.send_error != 0 && !refused,
          [&] { return Values{std::strerror(out.send_error)}; });
}

void LinkMonitor::watchMishaps() {
    const SocketStatistics& in = m_sample.in;
    mishap(LOST, in.lost, [&] { return Values{std::to_string(in.lost)}; });
    mishap(WRONG_SIZE, in.too_short + in.too_long, [&] {
        return Values{std::to_string(in.wrong_size), std::to_string(in.expected_size),
                      in.wrong_sender.getText().c_str()};
    });
    mishap(IMPLAUSIBLE, in.implausible, [&] {
        const SocketComplaint& c = in.complaint;
        return Values{c.field, number(c.value), c.sender.getText().c_str(),
                      *c.hint ? std::string(" (") + c.hint + ")" : ""};
    });
    mishap(TAKEN_OVER, in.taken_over, [&] {
        return Values{in.senders[0].getText().c_str(), in.senders[1].getText().c_str()};
    });
    mishap(SENDERS, in.interleaved, [&] {
        const std::vector<std::string> senders = liveSenders(in);
        return Values{std::to_string(senders.size()), join(senders, ", ")};
    });
}

double LinkMonitor::getAge() const {
    const SocketStatistics& in = m_sample.in;
    return in.datagrams_received ? std::max(0.0, m_now - in.last_received) : -1;
}

double LinkMonitor::allowedPause() const {
    const SocketStatistics& in = m_sample.in;
    if (in.datagrams_received < 2) return PAUSE;
    const double period =
        (in.last_received - in.first_received) / static_cast<double>(in.datagrams_received - 1);
    return std::clamp(PAUSE_IN_PERIODS * period, PAUSE, LONGEST_PAUSE);
}

template <class MakeValues>
void LinkMonitor::state(Kind kind, bool on, MakeValues&& values) {
    Trouble& trouble = m_troubles[kind];
    const bool begins = on && !trouble.on, ends = !on && trouble.on;
    trouble.on = on;
    if (on) trouble.values = values();
    if (begins) tell(kind, "");
    if (ends) tellEnd(kind);
}

template <class MakeValues>
void LinkMonitor::mishap(Kind kind, std::uint64_t count, MakeValues&& values) {
    Trouble& trouble = m_troubles[kind];
    if (count < trouble.count) trouble.count = count; // another socket's
    if (count != trouble.count) {
        trouble.count = count;
        trouble.last_sign = m_now;
        trouble.on = true;
        trouble.values = values();
        // Another size, field or guess is another cause; another number is not.
        const std::string about = kind == WRONG_SIZE    ? trouble.values[0]
                                  : kind == IMPLAUSIBLE ? trouble.values[0] + trouble.values[3]
                                                        : "";
        const bool told =
            std::find(trouble.told.begin(), trouble.told.end(), about) != trouble.told.end();
        if (!told && trouble.told.size() < MOST_WARNINGS) {
            trouble.told.push_back(about);
            tell(kind, about);
        }
    } else if (trouble.on && m_now - trouble.last_sign > HOLD) {
        trouble.on = false;
        trouble.told.clear();
    }
}

// ------------------------------------------------------------------ telling

void LinkMonitor::tell(Kind kind, const std::string& about) {
    const Words& words = WORDS[kind];
    const std::string text = Texts::fillIn(words.text, m_troubles[kind].values);
    if (kind == NO_HOST) // as it is at every start
        jLog::message("link: %s", text.c_str());
    else
        jLog::warning("link: %s%s", text.c_str(), words.remedy);
    for (Event& event : m_events)
        if (event.kind == kind && event.about == about) {
            event.text = text;
            event.times++;
            return;
        }
    if (m_events.size() < MOST_EVENTS) m_events.push_back({kind, about, text, 1});
}

void LinkMonitor::tellEnd(Kind kind) {
    const SocketStatistics& in = m_sample.in;
    if (kind == NO_HOST && in.datagrams_received)
        jLog::message("link: records come from %s", in.senders[0].getText().c_str());
    if (kind == SILENT)
        jLog::message("link: records come again after %.1f s", in.last_received - m_silent_since);
    if (kind == SEND_FAILING) jLog::message("link: the feedback goes out again");
}

/// Once, when less was granted than asked for.
void LinkMonitor::tellRoom() {
    const SocketStatistics& in = m_sample.in;
    if (m_room_told || in.receive_buffer >= in.asked_buffer) return;
    m_room_told = true;
    jLog::warning("link: the system grants %d bytes for waiting records where %d were asked for: "
                  "some are lost when the channel stalls for long; sysctl -w "
                  "net.core.rmem_max=%d, as root, allows them",
                  in.receive_buffer / 2, in.asked_buffer / 2, in.asked_buffer / 2);
}

/// While several send, that the sender changes is no news.
bool LinkMonitor::isShown(Kind kind) const {
    return m_troubles[kind].on && !(kind == TAKEN_OVER && m_troubles[SENDERS].on);
}

std::string LinkMonitor::getStatus() const {
    std::vector<std::string> texts;
    for (int kind = 0; kind < KINDS; kind++)
        if (isShown(static_cast<Kind>(kind)))
            texts.push_back(Texts::fillIn(WORDS[kind].text, m_troubles[kind].values));
    return join(texts, "; ");
}

std::string LinkMonitor::getPictureText() const {
    std::vector<std::string> texts;
    for (int kind = 0; kind < KINDS; kind++)
        if (isShown(static_cast<Kind>(kind)))
            texts.push_back(Texts::fillIn(Texts::get(WORDS[kind].key), m_troubles[kind].values));
    return join(texts, "\n");
}

std::string LinkMonitor::getStatistics() const {
    const SocketStatistics& in = m_sample.in;
    std::string text =
        Texts::fill("link.counts", {std::to_string(in.lost), std::to_string(in.too_short),
                                    std::to_string(in.too_long), std::to_string(in.implausible),
                                    std::to_string(in.filtered)});
    if (in.receive_buffer < in.asked_buffer)
        text += '\n' + Texts::fill("link.room", {std::to_string(in.receive_buffer / 2),
                                                 std::to_string(in.asked_buffer / 2)});
    return text;
}

std::string LinkMonitor::getSummary(int applied, int resets) const {
    const SocketStatistics &in = m_sample.in, &out = m_sample.out;
    const auto count = [](std::uint64_t n, const char* what) { return std::to_string(n) + what; };
    std::string text =
        "records: " + count(in.datagrams_received, " received, ") + std::to_string(applied) +
        " applied, " + count(in.lost, " lost, ") + count(in.too_short, " short, ") +
        count(in.too_long, " long, ") + count(in.implausible, " implausible, ") +
        count(in.filtered, " from others, ") + count(in.empty, " empty; ") +
        std::to_string(resets) + " resets\nfeedback: " + count(out.datagrams_sent, " sent, ") +
        count(out.send_failures, " failed\n");
    if (in.receive_buffer < in.asked_buffer)
        text += "link: room for " + std::to_string(in.receive_buffer / 2) +
                " bytes of waiting "
                "records, asked for were " +
                std::to_string(in.asked_buffer / 2) + "\n";
    for (const Event& event : m_events) {
        if (event.kind == NO_HOST && in.datagrams_received) continue; // it came
        std::string line = event.text;
        if (event.kind == SILENT)
            line = Texts::fillIn(WORDS[SILENT].text, {wholeSeconds(m_longest_silence)});
        if (event.kind == LOST) line = Texts::fillIn(WORDS[LOST].text, m_troubles[LOST].values);
        if (event.times > 1) line += ", " + std::to_string(event.times) + " times";
        text += "link: " + line + '\n';
    }
    return text;
}
