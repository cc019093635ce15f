// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jVector.h"

namespace ig {

/// A user-interface message; the identifier tells what it is about.
struct UiMsg {
    int id = 0;
    void* ptr = nullptr; ///< what it carries, for receivers that know the identifier; not owned
};

/// A receiver of user-interface messages. From `attach` to `detach` every message sent through
/// `MsgMngr` reaches `processMsg`. Copies start unattached.
class MsgNode {
public:
    MsgNode() = default;
    MsgNode(const MsgNode&) {}
    MsgNode& operator=(const MsgNode&) { return *this; }

    virtual void processMsg(UiMsg*) {}

    void attach();
    void detach();

protected:
    ~MsgNode() { detach(); }

private:
    bool m_attached = false;
};

/// Delivers user-interface messages, synchronously, on the main thread.
class MsgMngr {
public:
    static MsgMngr* get();
    /// To every attached node, in the order in which they attached. Nodes that attach meanwhile
    /// don't get this message; nodes that detach meanwhile may be destroyed.
    void send(UiMsg* message);
    /// Sends a message made of an identifier, or of one and what it carries.
    void notifyHelper(int id) { notifyHelperPtr(id, nullptr); }
    void notifyHelperPtr(int id, void* ptr) {
        UiMsg message{id, ptr};
        send(&message);
    }

private:
    friend class MsgNode;
    jVector<MsgNode*> m_nodes; ///< null where one detached while a message is under way
    int m_depth = 0;           ///< messages under way
};

} // namespace ig
