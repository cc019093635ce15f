// SPDX-License-Identifier: MIT
#include "ig/action/Action.h"

namespace ig {

bool Action::step(float) { return !isPause(); }

} // namespace ig
