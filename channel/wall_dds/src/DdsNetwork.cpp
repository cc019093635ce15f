// SPDX-License-Identifier: MIT
#include "DdsBarrier.h"
#include "DdsPublisher.h"
#include "DdsSubscriber.h"
#include "NewSockets.h"
#include "Topics.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <dds/ddsrt/log.h>
#include <ifaddrs.h>
#include <memory>
#include <netinet/in.h>

namespace {

constexpr int MOST_PARTICIPANTS = 32; ///< programs of walls on one computer

using Qos = std::unique_ptr<dds_qos_t, decltype(&dds_delete_qos)>;

Qos makeQos() { return {dds_create_qos(), dds_delete_qos}; }

Qos qosOfNow() {
    Qos qos = makeQos();
    dds_qset_reliability(qos.get(), DDS_RELIABILITY_BEST_EFFORT, 0);
    dds_qset_history(qos.get(), DDS_HISTORY_KEEP_LAST, 64);
    return qos;
}

Qos qosOfHistory() {
    Qos qos = makeQos();
    const std::int32_t all = DDS_LENGTH_UNLIMITED;
    dds_qset_reliability(qos.get(), DDS_RELIABILITY_RELIABLE, DDS_MSECS(100));
    dds_qset_durability(qos.get(), DDS_DURABILITY_TRANSIENT_LOCAL);
    dds_qset_history(qos.get(), DDS_HISTORY_KEEP_ALL, all);
    dds_qset_durability_service(qos.get(), 0, DDS_HISTORY_KEEP_ALL, all, all, all, all);
    return qos;
}

Qos qosOfReady() {
    Qos qos = makeQos();
    dds_qset_reliability(qos.get(), DDS_RELIABILITY_RELIABLE, 0);
    dds_qset_history(qos.get(), DDS_HISTORY_KEEP_LAST, 1);
    return qos;
}

/// The first IPv4 address of an interface; empty, with those that there are, when there is none.
std::string addressOf(const std::string& interface, std::string& names) {
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) return {};
    std::string address;
    for (const ifaddrs* at = list; at; at = at->ifa_next) {
        if (!at->ifa_addr || at->ifa_addr->sa_family != AF_INET) continue;
        char text[INET_ADDRSTRLEN] = {};
        inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(at->ifa_addr)->sin_addr, text,
                  sizeof text);
        names += (names.empty() ? "" : ", ") + std::string(at->ifa_name);
        if (address.empty() && at->ifa_name == interface) address = text;
    }
    freeifaddrs(list);
    return address;
}

/// In place of what the environment may say: one interface, and nobody is asked but the peers.
std::string writeConfiguration(const wall::Network& network, const std::string& address) {
    const std::string multicast = network.multicast ? "true" : "false";
    std::string peers = "<Peer address=\"" + address + "\"/>";
    for (const std::string& peer : network.peers)
        if (peer != address) peers += "<Peer address=\"" + peer + "\"/>";
    return "<Domain id=\"any\"><General><Interfaces><NetworkInterface name=\"" + network.interface +
           "\" multicast=\"" + multicast + "\"/></Interfaces><AllowMulticast>" + multicast +
           "</AllowMulticast></General><Discovery><ParticipantIndex>auto</ParticipantIndex>"
           "<MaxAutoParticipantIndex>" +
           std::to_string(MOST_PARTICIPANTS) + "</MaxAutoParticipantIndex><Peers>" + peers +
           "</Peers><LeaseDuration>2s</LeaseDuration></Discovery></Domain>";
}

/// What the middleware says of itself is no part of a log. It may stay when this library goes.
class Silence {
public:
    Silence() { setSink(passOver); }
    ~Silence() { setSink(nullptr); }
    Silence(const Silence&) = delete;

private:
    static void passOver(void*, const dds_log_data_t*) {}
    static void setSink(dds_log_write_fn_t sink) {
        dds_set_log_sink(sink, nullptr);
        dds_set_trace_sink(sink, nullptr);
    }
};

class DdsNetwork final : public wall::WallNetwork {
public:
    /// False with `message`.
    bool open(const wall::Network& network, std::string& message);

    std::unique_ptr<wall::Publisher> publish(std::uint64_t run, std::string& message) override;
    std::unique_ptr<wall::Subscriber> subscribe(std::string& message) override;
    std::unique_ptr<wall::Barrier> join(const std::string& name, std::string& message) override;

private:
    Entity makeTopic(const dds_topic_descriptor_t& type, const char* name) const {
        return Entity(dds_create_topic(m_participant.get(), &type, name, nullptr, nullptr));
    }
    Entity makeReader(const Entity& topic, const Qos& qos) const {
        return Entity(dds_create_reader(m_participant.get(), topic.get(), qos.get(), nullptr));
    }
    Entity makeWriter(const Entity& topic, const Qos& qos) const {
        return Entity(dds_create_writer(m_participant.get(), topic.get(), qos.get(), nullptr));
    }
    Entity makeWaitset(std::initializer_list<const Entity*> readers) const;

    Silence m_silence;
    Entity m_domain, m_participant, m_now, m_history, m_ready;
};

bool DdsNetwork::open(const wall::Network& network, std::string& message) {
    std::string names;
    const std::string address = addressOf(network.interface, names);
    if (address.empty()) {
        message = "there is no network interface \"" + network.interface +
                  "\" with an IPv4 address; there is " + names;
        return false;
    }
    const auto id = static_cast<dds_domainid_t>(network.domain);
    const NewSockets sockets;
    m_domain = Entity(dds_create_domain(id, writeConfiguration(network, address).c_str()));
    if (m_domain.isGood() && !sockets.tie(network.interface)) { // before anything is sent
        message = "cannot speak on " + network.interface + " alone: " + std::strerror(errno);
        return false;
    }
    if (m_domain.isGood()) m_participant = Entity(dds_create_participant(id, nullptr, nullptr));
    if (m_participant.isGood()) {
        m_now = makeTopic(wall_topics_Piece_desc, "wall_now");
        m_history = makeTopic(wall_topics_Piece_desc, "wall_history");
        m_ready = makeTopic(wall_topics_Ready_desc, "wall_ready");
    }
    if (m_now.isGood() && m_history.isGood() && m_ready.isGood()) return true;
    const Entity& failed = m_domain.isGood() ? m_participant : m_domain;
    message = "cannot speak on " + network.interface + " (" + address + "), domain " +
              std::to_string(network.domain) + ": " + dds_strretcode(failed.get());
    return false;
}

Entity DdsNetwork::makeWaitset(std::initializer_list<const Entity*> readers) const {
    Entity waitset(dds_create_waitset(m_participant.get()));
    for (const Entity* reader : readers)
        dds_waitset_attach(waitset.get(), dds_create_readcondition(reader->get(), DDS_ANY_STATE),
                           0);
    return waitset;
}

std::unique_ptr<wall::Publisher> DdsNetwork::publish(std::uint64_t run, std::string& message) {
    Entity now = makeWriter(m_now, qosOfNow()), history = makeWriter(m_history, qosOfHistory());
    const bool good = now.isGood() && history.isGood();
    auto publisher = std::make_unique<DdsPublisher>(run, std::move(now), std::move(history));
    if (good && publisher->begin()) return publisher;
    message = good ? "the system has no thread to spare" : "no writer can be made";
    return nullptr;
}

std::unique_ptr<wall::Subscriber> DdsNetwork::subscribe(std::string& message) {
    Entity now = makeReader(m_now, qosOfNow()), history = makeReader(m_history, qosOfHistory());
    Entity waitset = makeWaitset({&now, &history});
    if (now.isGood() && history.isGood() && waitset.isGood())
        return std::make_unique<DdsSubscriber>(std::move(now), std::move(history),
                                               std::move(waitset));
    message = "no reader can be made";
    return nullptr;
}

std::unique_ptr<wall::Barrier> DdsNetwork::join(const std::string& name, std::string& message) {
    Entity writer = makeWriter(m_ready, qosOfReady()), reader = makeReader(m_ready, qosOfReady());
    Entity waitset = makeWaitset({&reader});
    if (writer.isGood() && reader.isGood() && waitset.isGood())
        return std::make_unique<DdsBarrier>(name, std::move(writer), std::move(reader),
                                            std::move(waitset));
    message = "no barrier can be made";
    return nullptr;
}

} // namespace

extern "C" __attribute__((visibility("default"))) wall::WallNetwork*
CreateWallNetwork(const wall::Network& network, std::string& message) {
    auto made = std::make_unique<DdsNetwork>();
    return made->open(network, message) ? made.release() : nullptr;
}
