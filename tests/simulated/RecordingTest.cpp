#include "simulated/RecordedMac.h"

#include "smc/FourCharCode.h"
#include "tests/support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using namespace orv;

namespace {

const std::string machine = R"({"format": 1, "description": "a } in a text \" {",
  "sysctl": {"hw.model": "MacBookPro17,1", "machdep.cpu.brand_string": "Apple M1"},
  "smc": [{"key": "TB0T", "type": "sp78", "bytes": "1e00"}, {"key": "F0Ac", "type": "fpe2", "bytes": "1f40"}],
  "hid": [{"locationID": 1416638569, "temperature": 41.5}], "bluetooth": "first", "watch": "{}"}
)";

// The same one before and after a moment to which a recording is played.
std::string faultOf(const std::string& steps)
{
    const TemporaryFile file(machine + steps);
    std::string fault;
    EXPECT_FALSE(Recording::open(file.path, fault)) << steps;
    for (const double moment : {0.0, 5.0, 1e9}) {
        std::string later;
        EXPECT_FALSE(RecordedMac::open(file.path, later, moment)) << steps;
        EXPECT_EQ(later, fault) << moment;
    }
    EXPECT_TRUE(fault.starts_with(file.path + ": ")) << fault;
    return fault.substr(file.path.size() + 2);
}

std::string bytesOf(SimulatedMac& mac, const char* key)
{
    Hardware::Bytes bytes{};
    return mac.readBytes(fourCharCode(key), bytes).status == 0
        ? std::to_string(bytes[0]) + "," + std::to_string(bytes[1])
        : "fails";
}

struct Listener final : SleepWakeObserver {
    explicit Listener(SimulatedPlatform& listened)
        : simulation(listened)
    {
        simulation.workspace.registerSleepWakeObservers(*this);
        simulation.bluetoothEvents.observe([this] { told += "connect "; }, [this] { told += "pair "; });
    }
    ~Listener() override { simulation.workspace.removeSleepWakeObservers(*this); }

    void workspaceDidWakeUp() override { told += "wake "; }
    void workspaceWillSleep() override { told += "sleep "; }

    SimulatedPlatform& simulation;
    std::string told;
};

} // namespace

TEST(Recording, RefusesAStepThatCannotBeUsedAndNamesItsLine)
{
    const std::vector<std::pair<std::string, std::string>> cases{
        {"[]\n", "line 5: not an object"},
        {"{}\n", "line 5: at: required, but not there"},
        {"{\"at\": -1}\n", "line 5: at: not a number from 0 to 1000000000 (seconds)"},
        {"{\"at\": \"5\"}\n", "line 5: at: not a number from 0 to 1000000000 (seconds)"},
        {"{\"at\": 5}\n\n{\"at\": 4.9}\n", "line 7: at: before the step before it"},
        {"{\"at\": 5, \"smd\": {}}\n", "line 5: smd: unknown member"},
        {"{\"at\": 5, \"smc\": []}\n", "line 5: smc: not an object"},
        {"{\"at\": 5, \"smc\": {\"TC0P\": \"00\"}}\n", "line 5: smc.TC0P: the machine has no such key"},
        {"{\"at\": 5, \"smc\": {\"TB0T\": 5}}\n", "line 5: smc.TB0T: not a text"},
        {"{\"at\": 5, \"smc\": {\"TB0T\": [\"00\"]}}\n", "line 5: smc.TB0T: not a text"},
        {"{\"at\": 5, \"hid\": {\"1\": 40}}\n", "line 5: hid.1: the machine has no such service"},
        {"{\"at\": 5, \"hid\": {\"-0\": 40}}\n", "line 5: hid.-0: the machine has no such service"},
        {"{\"at\": 5, \"hid\": {\"0\": \"40\"}}\n", "line 5: hid.0: neither a number nor null"},
        {"{\"at\": 5, \"event\": \"woke\"}\n", "line 5: event: none of sleep, wake, connect and pair"},
        {"{\"at\": 1000000000.1}\n", "line 5: at: not a number from 0 to 1000000000 (seconds)"},
        {"{\"at\": 5, \"hid\": []}\n", "line 5: hid: not an object"},
        {"{\"at\": 5, \"hid\": {\"000000000\": 40}}\n", "line 5: hid.000000000: the machine has no such service"},
        {"{\"at\": 5, \"hid\": {\"\": 40}}\n", "line 5: hid.: the machine has no such service"},
        {"{\"at\": 5, \"hid\": {\"0:\": 40}}\n", "line 5: hid.0:: the machine has no such service"},
        {"x\n{\"at\": 5}\n", "line 5: "},
    };
    for (const auto& [steps, fault] : cases)
        EXPECT_EQ(faultOf(steps).substr(0, fault.size()), fault) << steps;
}

TEST(Recording, RefusesALineThatIsTooLong)
{
    const std::string longest(16u << 20, ' '); // blank, and so quick to read
    EXPECT_EQ(faultOf(longest + " \n"), "line 5: the line is too long; see orv-machine-file(5)");
    EXPECT_EQ(faultOf(longest + "\n{}\n"), "line 6: at: required, but not there; see orv-machine-file(5)");
    const TemporaryFile file(R"({"sysctl": {}} {"at": 5})");
    std::string fault;
    EXPECT_FALSE(Recording::open(file.path, fault));
    EXPECT_EQ(fault, file.path + ": line 1: something follows the machine on its last line; see orv-machine-file(5)");
}

TEST(Recording, RefusesALaterFormatByItsNumber)
{
    const char* later = "format: 2 is newer than this program, which knows 1";
    const char* none = "format: not a whole number from 1 on";
    for (const auto& [format, expected] :
        {std::pair("1", ""), std::pair("2", later), std::pair("0", none), std::pair("\"1\"", none)}) {
        std::string fault;
        parseMachine(R"({"sysctl": {}, "format": )" + std::string(format) + "}", fault);
        EXPECT_EQ(fault, expected) << format;
    }
}

// Wherever it is cut, what stands before the cut is read, and the reader says when a line is not whole.
TEST(Recording, IsReadUpToItsLastWholeLine)
{
    const std::string first = "{\"at\": 5, \"smc\": {\"TB0T\": \"2000\"}}";
    const std::string second = "{\"at\": 7.5, \"hid\": {\"0\": null}}";
    const auto whole = machine + first + "\n" + second;
    const auto endOfFirst = machine.size() + first.size();
    for (auto size = machine.size() - 1; size <= whole.size(); ++size) {
        const TemporaryFile file(whole.substr(0, size));
        std::string fault;
        auto recording = Recording::open(file.path, fault);
        ASSERT_TRUE(recording) << size << fault;
        EXPECT_EQ(recording->length(), size < endOfFirst ? 0 : size < whole.size() ? 5 : 7.5) << size;
        const bool isWhole =
            size <= machine.size() || size == endOfFirst || size == endOfFirst + 1 || size == whole.size();
        EXPECT_EQ(recording->notice().empty(), isWhole) << size;
        for (int time = 0; time < 2; ++time) {
            double last = 0;
            while (const auto step = recording->next())
                last = step->at;
            EXPECT_EQ(last, recording->length()) << size;
            EXPECT_TRUE(recording->rewind());
        }
    }
    for (std::size_t size = 0; size < machine.size() - 1; size += 9) {
        const TemporaryFile file(whole.substr(0, size));
        std::string fault;
        EXPECT_FALSE(Recording::open(file.path, fault)) << size;
    }
}

// What a released version could read once is read for ever: this folder only grows.
TEST(Recording, OfEachFormatIsStillRead)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ORV_RECORDINGS)) {
        std::string fault;
        auto recording = Recording::open(entry.path(), fault);
        ASSERT_TRUE(recording) << fault;
        EXPECT_TRUE(recording->notice().empty());
        EXPECT_GT(recording->length(), 0);
        ++count;
    }
    EXPECT_GE(count, 1);
}

TEST(Recording, IsPlayedStepByStepAheadOfWhatIsDueAtTheSameMoment)
{
    const TemporaryFile file(machine + R"({"at": 5, "smc": {"TB0T": null, "F0Ac": "2000"}, "bluetooth": null}
{"at": 5, "event": "sleep"}
{"at": 7, "smc": {"TB0T": "2100"}, "hid": {"0": null}, "watch": null, "bluetooth": {"a": 1}, "event": "wake"}
)");
    std::string fault;
    const auto mac = RecordedMac::open(file.path, fault);
    ASSERT_TRUE(mac) << fault;
    std::string seen;
    const auto tick = mac->runLoop.scheduleRepeating(
        Seconds(5), [&] { seen += bytesOf(mac->simulation.mac, "TB0T") + mac->simulation.profilerOutput; });
    mac->player.playTo(4.9, mac->runLoop);
    EXPECT_EQ(bytesOf(mac->simulation.mac, "TB0T"), "30,0");
    mac->player.playTo(6, mac->runLoop);
    EXPECT_EQ(seen, "fails");
    mac->player.playTo(10, mac->runLoop);
    EXPECT_EQ(seen, "fails33,0{\"a\": 1}");
    EXPECT_EQ(bytesOf(mac->simulation.mac, "F0Ac"), "32,0");
}

TEST(Recording, IsSkippedToAMomentAndThenTellsOnlyOfASleepUnderWay)
{
    const TemporaryFile file(machine + R"({"at": 5, "smc": {"TB0T": "2000"}, "event": "sleep"}
{"at": 7, "event": "connect"}
{"at": 9, "smc": {"TB0T": "2100"}, "bluetooth": "second", "event": "wake"}
{"at": 11, "bluetooth": null, "event": "pair"}
)");
    struct Case {
        double moment;
        const char* bytes;
        const char* report;
        const char* told;
        const char* later;
    };
    const Case cases[]{{4.9, "30,0", "first", "", "sleep connect wake pair "},
        {5, "32,0", "first", "sleep ", "connect wake pair "}, {8.9, "32,0", "first", "sleep ", "wake pair "},
        {9, "33,0", "second", "", "pair "}, {11, "33,0", "", "", ""}};
    for (const auto& [moment, bytes, report, told, later] : cases) {
        std::string fault;
        const auto mac = RecordedMac::open(file.path, fault);
        ASSERT_TRUE(mac) << fault;
        Listener listener(mac->simulation);
        mac->player.skipTo(moment);
        EXPECT_EQ(mac->player.position(), moment);
        EXPECT_EQ(bytesOf(mac->simulation.mac, "TB0T"), bytes) << moment;
        EXPECT_EQ(mac->simulation.profilerOutput, report) << moment;
        EXPECT_EQ(Recording::open(file.path, fault)->profilerOutputAt(moment), report) << moment;
        EXPECT_EQ(listener.told, "") << moment;
        mac->player.begin();
        EXPECT_EQ(std::exchange(listener.told, ""), told) << moment;
        mac->player.playTo(20, mac->runLoop);
        EXPECT_EQ(listener.told, later) << moment;
        EXPECT_EQ(mac->player.position(), 20);

        const auto another = RecordedMac::open(file.path, fault);
        Listener realTime(another->simulation);
        another->player.skipTo(moment);
        another->player.start(another->runLoop);
        EXPECT_EQ(std::exchange(realTime.told, ""), told) << moment;
        another->runLoop.advance(Seconds(60)); // its clock runs ahead of the real one
        EXPECT_EQ(realTime.told, later) << moment;
    }
}
