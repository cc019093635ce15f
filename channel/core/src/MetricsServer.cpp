// SPDX-License-Identifier: MIT
#include "MetricsServer.h"

#include "ig/base/jLog.h"
#include "program/Process.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <exception>
#include <prometheus/exposer.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

using ig::jLog;

namespace {

/// The library doesn't tell why it can't listen: asks the system.
std::string whyNot(int port) {
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const bool good = descriptor >= 0 &&
                      bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    const int error = good ? EADDRINUSE : errno; // good: it was in use a moment ago
    if (descriptor >= 0) close(descriptor);
    return std::strerror(error);
}

} // namespace

MetricsServer::MetricsServer() = default;
MetricsServer::~MetricsServer() = default;

bool MetricsServer::open(int port, const std::shared_ptr<prometheus::Collectable>& metrics) {
    const program::WithoutSignals without;
    try {
        m_exposer = std::make_unique<prometheus::Exposer>("127.0.0.1:" + std::to_string(port));
    } catch (const std::exception&) {
        jLog::error("visual_channel: --metrics: cannot listen on 127.0.0.1:%d: %s: free the port "
                    "or name another one; 0 takes a free one",
                    port, whyNot(port).c_str());
        return false;
    }
    m_exposer->RegisterCollectable(metrics);
    jLog::message("visual_channel: metrics at http://127.0.0.1:%d/metrics",
                  m_exposer->GetListeningPorts().at(0));
    return true;
}
