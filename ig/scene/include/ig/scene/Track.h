// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jAllocator.h"
#include "ig/base/jString.h"
#include "ig/base/jVector.h"

namespace ig {

class Item;
class Material;
class Node;
class Package;
class World;

/// An animation read from a file: channels that drive material sliders and the enabled state of
/// nodes from one number, usually a time or a level. Owned by whoever loads it.
class Track : public jObject {
public:
    /// The path that the track was loaded from.
    virtual const jString& getPath() const { return m_path; }

    /// Reads the file and finds its targets in the world. False when the file is missing, which the
    /// caller reports, or malformed or without channels, which is logged with path and line. A
    /// target that the world lacks is left out with one warning.
    bool load(const jString& path, World* world);
    /// Moves every channel to `value`. Nothing for a value that is not finite.
    void set(float value);
    /// Forgets all channels.
    void release();

private:
    struct Key {
        float time, value;
    };
    struct Channel {
        Material* material = nullptr;
        int parameter = -1;
        Node* node = nullptr;
        jVector<Key> keys; ///< rising in time, at least one
        float at(float time) const;
    };
    bool readChannel(const Package& package, World* world);
    bool readKeys(const Package& package, Channel& channel) const;

    jString m_path;
    jVector<Channel> m_channels;
};

} // namespace ig
