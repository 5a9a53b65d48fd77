#include "fuzz/support/RepliesOfBothKinds.h"

#include "fuzz/support/Fuzzer.h"
#include "platform/linux/BusHandles.h"
#include "platform/linux/BusMessageSink.h"
#include "tools/orvctl/BusMessageReader.h"

#include <sys/socket.h>

namespace orv {

namespace {

// Messages need a bus to belong to; nobody listens at this one's other end.
sd_bus* unansweredBus()
{
    int ends[2];
    sd_bus* bus = nullptr;
    require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0, "there is a socket pair");
    require(
        sd_bus_new(&bus) >= 0 && sd_bus_set_fd(bus, ends[0], ends[0]) >= 0 && sd_bus_start(bus) >= 0, "there is a bus");
    return bus;
}

} // namespace

void requireSameReply(const std::function<void(ReplySink&)>& writeReply)
{
    static auto* const bus = unansweredBus();
    BusMessage message;
    require(sd_bus_message_new_signal(bus, message.out(), "/", "org.orv.Fuzzed", "Reply") >= 0, "there is a message");
    BusMessageSink busSink(message.get());
    writeReply(busSink);
    require(busSink.isComplete(), "a bus message carries every reply");
    require(sd_bus_message_seal(message.get(), 1, 0) >= 0 && sd_bus_message_rewind(message.get(), 1) >= 0,
        "a reply is a whole message");

    ValueSink valueSink;
    writeReply(valueSink);
    const auto received = readBusValue(message.get());
    require(received && *received == valueSink.take(), "both kinds of reply say the same");
}

} // namespace orv
