// SPDX-License-Identifier: MIT
#include "DdsSubscriber.h"

#include "Topics.h"

#include <cmath>

void DdsSubscriber::wait(double seconds) {
    if (m_stream.hasMore()) return;
    dds_waitset_wait(m_waitset.get(), nullptr, 0, std::llround(seconds * double(DDS_NSECS_IN_SEC)));
}

std::vector<std::uint8_t> DdsSubscriber::take() {
    for (const dds_entity_t reader : {m_history.get(), m_now.get()})
        takeAll<wall_topics_Piece>(reader, [this](const wall_topics_Piece& piece) {
            m_stream.add(piece.run, piece.offset, piece.size,
                         {piece.bytes._buffer, piece.bytes._length});
        });
    return m_stream.take();
}

bool DdsSubscriber::isConnected() const {
    dds_subscription_matched_status_t status{};
    dds_get_subscription_matched_status(m_history.get(), &status);
    return status.current_count > 0;
}
