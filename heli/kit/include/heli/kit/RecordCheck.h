// SPDX-License-Identifier: MIT
#pragma once

#include "common/wire/UdpRecvData.h"
#include "ig/net/SocketUDP.h"

/// The first field of a host data record, a pose's before the others, whose value no helicopter, no
/// weather and no winch has: one that is not finite or beyond `WireField::plausible`, a position of
/// nothing but zeros, a reset command with its bytes swapped. The hint says so where a value would
/// be plausible with its bytes swapped, or where latitude and longitude look exchanged. Without a
/// field when nothing is wrong. Radians are not noticed: they are small degrees.
///
/// The record is applied whatever is found: this is for telling.
ig::SocketComplaint checkRecord(const UdpRecvData& record);

/// The work of applying a record, in plain records: a reset and putting out or stowing the winch's
/// load cost more. `before` is the record before it; null when that isn't known.
int weighRecord(const UdpRecvData& record, const UdpRecvData* before);
