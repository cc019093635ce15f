// SPDX-License-Identifier: MIT
#include "heli/kit/UdpDataKit.h"

#include "heli/kit/RecordCheck.h"
#include "ig/base/jAllocator.h"
#include "ig/base/jLog.h"
#include "ig/net/SocketUDP.h"

#include <algorithm>
#include <cstring>

using namespace ig;

namespace {

const char* const SOURCE = "src/kit/UdpDataKit";
constexpr int MAX_UDP_PAYLOAD = 65507; ///< the largest over IPv4
constexpr std::size_t BUFFER_SIZE = 4096;

void closeAndFree(SocketUDP*& socket, const char* function) {
    if (!socket) return;
    if (socket->isOpened()) socket->close();
    socket->release();
    memDelete(socket, {SOURCE, function});
}

} // namespace

bool UdpRecvKit::init(int port) {
    release();
    m_socket = memNew<SocketUDP>({SOURCE, "UdpRecvKit::init"});
    if (m_socket) {
        m_socket->create();
        if (m_socket->bind(port) && m_socket->recv(MAX_UDP_PAYLOAD) && m_socket->nonblock()) {
            m_socket->setExpectedSize(sizeof(UdpRecvData));
            m_buffer.resize(BUFFER_SIZE);
            return true;
        }
    }
    jLog::error("%s: failed to create upd", "UdpRecvKit::init");
    closeAndFree(m_socket, "UdpRecvKit::init");
    return false;
}

int UdpRecvKit::receive() {
    if (!m_socket) return m_records.size();
    m_buffer.seekSet(0);
    int n = m_socket->read(m_buffer.getData(), 1, m_buffer.getSize());
    while (n > 0) {
        UdpRecvData& record = m_records.append(UdpRecvData{});
        std::memcpy(&record, m_buffer.getData(),
                    std::min(static_cast<std::size_t>(n), sizeof record));
        judge(n >= static_cast<int>(sizeof record));
        m_buffer.seekSet(0);
        n = m_socket->read(m_buffer.getData(), 1, m_buffer.getSize());
    }
    return m_records.size();
}

/// Tells the socket what the newest record is like, so that others can tell and a drain ends in
/// time. One that came too short is told by its size: what its zeros mean is no news.
void UdpRecvKit::judge(bool whole) {
    const int last = m_records.size() - 1;
    const UdpRecvData& record = m_records[last];
    m_socket->charge(weighRecord(record, last > 0 ? &m_records[last - 1] : nullptr) - 1);
    const SocketComplaint complaint = whole ? checkRecord(record) : SocketComplaint{};
    if (complaint.field) m_socket->complain(complaint);
}

void UdpRecvKit::release() { closeAndFree(m_socket, "UdpRecvKit::release"); }

bool UdpSendKit::init(const jString& ip, int port) {
    release();
    m_socket = memNew<SocketUDP>({SOURCE, "UdpSendKit::init"});
    if (m_socket) {
        m_socket->create();
        m_socket->setSendIP(ip);
        m_socket->setSendPort(port);
        if (m_socket->send(MAX_UDP_PAYLOAD) && m_socket->nonblock() && m_socket->bind()) {
            m_buffer.resize(BUFFER_SIZE);
            return true;
        }
    }
    jLog::error("%s: failed to create udp", "UdpSendKit::init");
    closeAndFree(m_socket, "UdpSendKit::init");
    return false;
}

void UdpSendKit::release() { closeAndFree(m_socket, "UdpSendKit::release"); }
