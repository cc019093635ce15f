// SPDX-License-Identifier: MIT
#pragma once

#include "Entity.h"
#include "wall/WallNetwork.h"

#include <map>

/// Everybody tells everybody which picture is ready.
class DdsBarrier final : public wall::Barrier {
public:
    DdsBarrier(std::string name, Entity writer, Entity reader, Entity waitset)
        : m_name(std::move(name)), m_writer(std::move(writer)), m_reader(std::move(reader)),
          m_waitset(std::move(waitset)) {}

    bool wait(std::uint64_t run, std::uint64_t frame, double seconds) override;

private:
    struct Other {
        std::uint64_t run = 0, frame = 0;
        dds_time_t heard = 0;
    };

    bool areReady(std::uint64_t run, std::uint64_t frame, dds_time_t now) const;

    std::string m_name;
    Entity m_writer, m_reader, m_waitset;
    std::map<std::string, Other> m_others;
};
