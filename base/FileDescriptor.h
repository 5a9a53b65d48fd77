#pragma once

#include "base/Owned.h"

#include <unistd.h>

namespace orv {

struct FileDescriptorTraits {
    using Handle = int;
    static constexpr Handle none = -1;
    static void release(Handle handle) { ::close(handle); }
};

using FileDescriptor = Owned<FileDescriptorTraits>;

} // namespace orv
