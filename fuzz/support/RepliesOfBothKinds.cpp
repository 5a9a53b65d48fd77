#include "fuzz/support/RepliesOfBothKinds.h"

#include "fuzz/support/Fuzzer.h"
#include "linux/bus/BusMessageReader.h"
#include "linux/bus/BusMessageSink.h"
#include "service/ValueSink.h"
#include "tests/support/UnansweredBus.h"

namespace orv {

void requireSameReply(const std::function<void(ReplySink&)>& writeReply)
{
    static auto* const bus = unansweredBus();
    require(bus, "there is a bus");
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
