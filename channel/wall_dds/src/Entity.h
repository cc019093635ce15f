// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <dds/dds.h>
#include <utility>

/// Owns an entity of the middleware, and what was made below it.
class Entity {
public:
    explicit Entity(dds_entity_t handle = 0) : m_handle(handle) {}
    Entity(Entity&& other) noexcept : m_handle(std::exchange(other.m_handle, 0)) {}
    Entity& operator=(Entity&& other) noexcept {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~Entity() {
        if (m_handle > 0) dds_delete(m_handle);
    }
    dds_entity_t get() const { return m_handle; }
    bool isGood() const { return m_handle > 0; }

private:
    dds_entity_t m_handle;
};

/// Takes all samples of a reader, and hands the valid ones out.
template <class Sample, class Use>
void takeAll(dds_entity_t reader, Use&& use) {
    constexpr std::uint32_t MOST = 64;
    int taken = 0;
    do {
        void* samples[MOST] = {};
        dds_sample_info_t infos[MOST];
        taken = dds_take(reader, samples, infos, MOST, MOST);
        for (int i = 0; i < taken; i++)
            if (infos[i].valid_data) use(*static_cast<const Sample*>(samples[i]));
        if (taken > 0) dds_return_loan(reader, samples, taken);
    } while (taken == static_cast<int>(MOST));
}
