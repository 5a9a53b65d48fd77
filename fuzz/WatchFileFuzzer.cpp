// A watch file's bytes, read as the helper reads them, and the replies that come of them.

#include "bluetooth/OrvBluetoothAppleWatch.h"
#include "fuzz/support/Fuzzer.h"
#include "fuzz/support/RepliesOfBothKinds.h"
#include "platform/ProcessLauncher.h"
#include "service/ValueSink.h"
#include "simulated/ManualRunLoop.h"
#include "simulated/SimulatedPlatform.h"

using namespace orv;

namespace {

class NoLauncher final : public ProcessLauncher {
public:
    void start(const std::string&, const std::vector<std::string>&, std::function<void(std::string)>) override { }
};

BluetoothBatteryDictionary watchEntries(const std::string& file)
{
    MachineFile machine;
    machine.watchFile = file;
    ManualRunLoop runLoop;
    NoLauncher launcher;
    SimulatedPlatform simulation(machine, "org.orv.Fuzzed", runLoop, launcher);
    const auto reader = OrvBluetoothAppleWatch::create(simulation.platform);
    runLoop.advance(Seconds(5));
    return reader->systemBlueToothDictionary;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto entries = watchEntries(std::string(textOf(data, size)));
    requireSameReply([&](ReplySink& sink) { writeBluetoothReply(entries, sink, messageBusLimits); });
    ValueSink propertyList;
    writeBluetoothReply(entries, propertyList, propertyListLimits);
    const auto reply = propertyList.take();
    require(reply.as<Dictionary>() && reply.as<Dictionary>()->size() == entries.size(), "each entry is replied");
    return 0;
}
