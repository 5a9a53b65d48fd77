// Nothing here runs: where there is an SDK, compiling this holds our own declarations of Apple's calls to it.

#include <IOKit/IOKitLib.h>
#include <mach/mach_init.h>
#include <sys/sysctl.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace apple {

constexpr auto success = KERN_SUCCESS;
constexpr auto nullPort = MACH_PORT_NULL;
constexpr auto nullObject = IO_OBJECT_NULL;
using Task = decltype(mach_task_self());

} // namespace apple

#undef KERN_SUCCESS
#undef MACH_PORT_NULL
#undef IO_OBJECT_NULL
#undef mach_task_self

namespace ours {

#include "platform/compat/IOKit/IOKitLib.h"
#include "platform/compat/sys/sysctl.h"

} // namespace ours

#define HOLDS_TYPE(name) static_assert(std::is_same_v<ours::name, ::name>)
HOLDS_TYPE(kern_return_t);
HOLDS_TYPE(mach_port_t);
HOLDS_TYPE(task_port_t);
HOLDS_TYPE(io_object_t);
HOLDS_TYPE(io_connect_t);
HOLDS_TYPE(io_iterator_t);
HOLDS_TYPE(io_service_t);
HOLDS_TYPE(CFDictionaryRef);
HOLDS_TYPE(CFMutableDictionaryRef);

#define HOLDS_CALL(name) static_assert(std::is_same_v<decltype(ours::name), decltype(::name)>)
HOLDS_CALL(IOServiceMatching);
HOLDS_CALL(IOServiceGetMatchingServices);
HOLDS_CALL(IOIteratorNext);
HOLDS_CALL(IOObjectRelease);
HOLDS_CALL(IOServiceOpen);
HOLDS_CALL(IOServiceClose);
HOLDS_CALL(IOConnectCallStructMethod);
HOLDS_CALL(sysctlbyname);

static_assert(KERN_SUCCESS == apple::success);
static_assert(MACH_PORT_NULL == apple::nullPort);
static_assert(IO_OBJECT_NULL == apple::nullObject);
static_assert(std::is_same_v<decltype(ours::mach_task_self()), std::remove_cvref_t<apple::Task>>);
