// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace prometheus {
class Collectable;
class Exposer;
} // namespace prometheus

/// Hands metrics to monitoring on the same machine: http://127.0.0.1:PORT/metrics, in the text form
/// of Prometheus. It answers on threads of its own, so that no frame waits for whoever asks. Its
/// end waits for them, which takes up to 2 s.
class MetricsServer {
public:
    MetricsServer();
    ~MetricsServer();

    /// Listens from now on; 0: at a free port. Logs where. False, with an error, when the port
    /// can't be had.
    bool open(int port, const std::shared_ptr<prometheus::Collectable>& metrics);

private:
    std::unique_ptr<prometheus::Exposer> m_exposer; ///< null before `open`
};
