#pragma once

#include "platform/Platform.h"

namespace orv {

/// This Mac. Never destroyed. Main thread only.
const Platform& cocoaPlatform();

} // namespace orv
