#include "base/Fatal.h"
#include "base/MainThread.h"
#include "hardware/Hardware.h"
#include "smc/SMCParamBlock.h"

#include <IOKit/IOKitLib.h>

#include <algorithm>
#include <string>
#include <vector>

namespace orv {

namespace {

// IOKit's and Mach's codes, from <IOKit/IOReturn.h> and <mach/message.h>.
constexpr kern_return_t sendInvalidDestination = 0x10000003;
constexpr kern_return_t badArgument = static_cast<kern_return_t>(0xe00002c2);

enum class Kind { emptyIterator, fullIterator, service, connection };

struct Object {
    io_object_t name;
    Kind kind;
    bool operator==(const Object&) const = default;
};

struct State {
    Hardware* hardware = nullptr;
    std::vector<Object> objects; // there are hardly ever more than two
    io_object_t lastName = 0x1000; // never handed out twice, so that a stale handle stays invalid
    int matchingDictionaries = 0;

    io_object_t add(Kind kind)
    {
        objects.push_back({++lastName, kind});
        return lastName;
    }

    bool is(io_object_t name, Kind kind) const
    {
        return std::ranges::find(objects, Object{name, kind}) != objects.end();
    }
};

// Asked for twice in every exchange, so it is made before the program begins, and it outlives whatever closes a
// connection at its end.
State& state = *new State;

// Reads and writes the caller's blocks in place: what was just stored field by field is slow to copy as a whole. A call
// that fails writes nothing.
kern_return_t answer(const SMCParamBlock& input, SMCParamBlock& output)
{
    auto& hardware = currentHardware();
    const auto reply = [&](SMCOutcome outcome, auto write) {
        if (outcome.status == KERN_SUCCESS) {
            output = {};
            output.result = outcome.result;
            write();
        }
        return outcome.status;
    };
    if (input.data8 == kSMCGetKeyFromIndex) {
        std::uint32_t key = 0;
        return reply(hardware.keyAtIndex(input.data32, key), [&] { output.key = key; });
    }
    if (input.data8 == kSMCGetKeyInfo) {
        Hardware::KeyInfo info;
        return reply(hardware.keyInfo(input.key, info), [&] {
            output.keyInfo.dataSize = info.dataSize;
            output.keyInfo.dataType = info.dataType;
        });
    }
    if (input.data8 == kSMCReadBytes) {
        Hardware::Bytes bytes{};
        // As many as the caller names: who forgets to gets none.
        const auto count = std::min<std::size_t>(input.keyInfo.dataSize, bytes.size());
        return reply(hardware.readBytes(input.key, bytes), [&] { std::copy_n(bytes.begin(), count, output.bytes); });
    }
    return badArgument;
}

} // namespace

void setHardware(Hardware& hardware)
{
    state.hardware = &hardware;
    std::erase_if(state.objects, [](const Object& object) { return object.kind == Kind::connection; });
}

Hardware& currentHardware()
{
    assertMainThread();
    if (!state.hardware)
        fatalError("the hardware was asked before it was set");
    return *state.hardware;
}

IOKitUsage ioKitUsage()
{
    IOKitUsage usage{.liveObjects = state.matchingDictionaries};
    for (const auto& [name, kind] : state.objects)
        ++(kind == Kind::connection ? usage.openConnections : usage.liveObjects);
    return usage;
}

} // namespace orv

using namespace orv;

#ifndef __APPLE__
extern "C" mach_port_t mach_task_self()
{
    return 1;
}
#endif

// The dictionary is only ever handed on to the next call, so its name is all it needs to be.
extern "C" CFMutableDictionaryRef IOServiceMatching(const char* name)
{
    ++state.matchingDictionaries;
    return reinterpret_cast<CFMutableDictionaryRef>(new std::string(name));
}

extern "C" kern_return_t IOServiceGetMatchingServices(mach_port_t, CFDictionaryRef matching, io_iterator_t* existing)
{
    const auto* name = reinterpret_cast<const std::string*>(matching);
    const bool isFound = *name == "AppleSMC" && currentHardware().hasSMC();
    delete name; // consumed, whatever comes of it
    --state.matchingDictionaries;
    *existing = state.add(isFound ? Kind::fullIterator : Kind::emptyIterator);
    return KERN_SUCCESS;
}

extern "C" io_object_t IOIteratorNext(io_iterator_t iterator)
{
    if (!state.is(iterator, Kind::fullIterator))
        return IO_OBJECT_NULL;
    *std::ranges::find(state.objects, iterator, &Object::name) = {iterator, Kind::emptyIterator};
    return state.add(Kind::service);
}

extern "C" kern_return_t IOObjectRelease(io_object_t object)
{
    return std::erase_if(state.objects, [&](const Object& each) { return each.name == object; }) == 1
        ? KERN_SUCCESS
        : sendInvalidDestination;
}

extern "C" kern_return_t IOServiceOpen(io_service_t service, task_port_t, uint32_t, io_connect_t* connect)
{
    if (!state.is(service, Kind::service))
        return sendInvalidDestination;
    *connect = state.add(Kind::connection);
    return KERN_SUCCESS;
}

extern "C" kern_return_t IOServiceClose(io_connect_t connect)
{
    if (!state.is(connect, Kind::connection))
        return sendInvalidDestination;
    std::erase(state.objects, Object{connect, Kind::connection});
    currentHardware().closeSMC();
    return KERN_SUCCESS;
}

extern "C" kern_return_t IOConnectCallStructMethod(mach_port_t connection, uint32_t selector, const void* inputStruct,
    size_t inputStructCnt, void* outputStruct, size_t* outputStructCnt)
{
    if (!state.is(connection, Kind::connection))
        return sendInvalidDestination;
    if (selector != kSMCUserClientSelector || inputStructCnt != sizeof(SMCParamBlock)
        || *outputStructCnt < sizeof(SMCParamBlock))
        return badArgument;
    const auto status =
        answer(*static_cast<const SMCParamBlock*>(inputStruct), *static_cast<SMCParamBlock*>(outputStruct));
    if (status == KERN_SUCCESS)
        *outputStructCnt = sizeof(SMCParamBlock);
    return status;
}
