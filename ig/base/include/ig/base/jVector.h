// SPDX-License-Identifier: MIT
#pragma once

#include <cassert>
#include <cstddef>
#include <initializer_list>
#include <utility>
#include <vector>

namespace ig {

/// The engine's growable array. Indices are `int`, as everywhere in the engine. Clearing keeps the
/// capacity. `T` must not be `bool`.
template <class T>
class jVector {
public:
    jVector() = default;
    jVector(std::initializer_list<T> values) : m_data(values) {}

    int size() const { return static_cast<int>(m_data.size()); }
    bool empty() const { return m_data.empty(); }

    T& operator[](int i) {
        assert(i >= 0 && i < size());
        return m_data[static_cast<std::size_t>(i)];
    }
    const T& operator[](int i) const {
        assert(i >= 0 && i < size());
        return m_data[static_cast<std::size_t>(i)];
    }
    T& back() { return m_data.back(); }
    const T& back() const { return m_data.back(); }
    T* data() { return m_data.data(); }
    const T* data() const { return m_data.data(); }

    T& append(T value) {
        m_data.push_back(std::move(value));
        return m_data.back();
    }
    /// Removes element `i`, keeping the order of the rest.
    void remove(int i) {
        assert(i >= 0 && i < size());
        m_data.erase(m_data.begin() + i);
    }
    /// Removes element `i` by moving the last element into its place: constant time, order not
    /// kept.
    void removeFast(int i) {
        assert(i >= 0 && i < size());
        if (i + 1 < size()) (*this)[i] = std::move(m_data.back());
        m_data.pop_back();
    }
    /// Index of the first element equal to `value`, or −1.
    int find(const T& value) const {
        for (int i = 0; i < size(); i++)
            if ((*this)[i] == value) return i;
        return -1;
    }
    void pop() { m_data.pop_back(); }
    /// Empties the array and keeps its capacity.
    void clear() { m_data.clear(); }
    /// Empties the array and gives its memory back.
    void destroy() { std::vector<T>().swap(m_data); }
    void resize(int n) { m_data.resize(static_cast<std::size_t>(n)); }
    void reserve(int n) { m_data.reserve(static_cast<std::size_t>(n)); }

    auto begin() { return m_data.begin(); }
    auto end() { return m_data.end(); }
    auto begin() const { return m_data.begin(); }
    auto end() const { return m_data.end(); }

private:
    std::vector<T> m_data;
};

} // namespace ig
