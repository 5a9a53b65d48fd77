#include "simulated/MachineFile.h"

#include "simulated/SimulatedMac.h"
#include "smc/FourCharCode.h"
#include "tests/support/TestMac.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace orv;

namespace {

std::string faultOf(const std::string& members)
{
    std::string fault;
    EXPECT_FALSE(parseMachine(R"({"sysctl": {})" + (members.empty() ? "" : ", " + members) + "}", fault)) << members;
    return fault;
}

std::string rowFault(const std::string& row)
{
    return faultOf(R"("smc": [{"key": "TC0P"}, )" + row + "]");
}

} // namespace

TEST(MachineFile, RefusesWhatItCannotUseAndNamesTheMember)
{
    EXPECT_EQ(faultOf(R"("smcs": [])"), "smcs: unknown member");
    EXPECT_EQ(faultOf(R"("smc": {})"), "smc: not a list");
    EXPECT_EQ(faultOf(R"("smc": null)"), "smc: not a list");
    EXPECT_EQ(faultOf(R"("hid": [5])"), "hid[0]: not an object");
    EXPECT_EQ(faultOf(R"("hid": [{"locationID": []}])"), "hid[0].locationID: neither a number nor a text");
    EXPECT_EQ(faultOf(R"("hid": [{"temperature": "40"}])"), "hid[0].temperature: not a number");
    EXPECT_EQ(faultOf(R"("hid": [{}, {"location": 5}])"), "hid[1].location: unknown member");
    EXPECT_EQ(faultOf(R"("description": 5)"), "description: not a text");
    EXPECT_EQ(faultOf(R"("exchangeDelay": -1)"), "exchangeDelay: not a number from 0 to 60000 (milliseconds)");
    EXPECT_EQ(rowFault("{}"), "smc[1]: has no key");
    EXPECT_EQ(rowFault(R"({"key": "TC0P"})"), "smc[1].key: the key is listed twice");
    EXPECT_EQ(rowFault(R"({"key": "TC10C"})"), "smc[1].key: not four characters");
    EXPECT_EQ(rowFault(R"({"key": "TC0\u00e9"})"), "smc[1].key: has a character that no such code holds");
    EXPECT_EQ(
        rowFault(R"({"key": "TA0P", "type": "sp\u0100x"})"), "smc[1].type: has a character that no such code holds");
    EXPECT_EQ(rowFault(R"({"key": "TA0P", "bytes": "2f8"})"), "smc[1].bytes: an odd number of hexadecimal digits");
    EXPECT_EQ(rowFault(R"({"key": "TA0P", "bytes": "2g"})"), "smc[1].bytes: not hexadecimal");
    EXPECT_EQ(rowFault(R"({"key": "TA0P", "bytes": [)" + ("\"00\", \"" + std::string(66, '0')) + "\"]}"),
        "smc[1].bytes[1]: more than 32 bytes");
    EXPECT_EQ(rowFault(R"({"key": "TA0P", "bytes": []})"), "smc[1].bytes: an empty list");
    EXPECT_EQ(
        rowFault(R"({"key": "TA0P", "size": 4294967296})"), "smc[1].size: not a whole number from 0 to 4294967295");
    EXPECT_EQ(rowFault(R"({"key": "TA0P", "fails": 1})"), "smc[1].fails: neither true nor false");
    EXPECT_EQ(rowFault(R"({"key": "TA0P", "byte": "00"})"), "smc[1].byte: unknown member");
    std::string fault;
    EXPECT_FALSE(parseMachine("{}", fault));
    EXPECT_EQ(fault, "sysctl: required, but not there");
    EXPECT_FALSE(parseMachine(R"({"sysctl": {"hw.model": 1.5}})", fault));
    EXPECT_EQ(fault, "sysctl.hw.model: not a whole number from -2147483648 to 4294967295");
    EXPECT_FALSE(parseMachine("[]", fault));
    EXPECT_EQ(fault, "the top level is not an object");
    EXPECT_FALSE(Recording::open("/nonexistent/machine.json", fault));
    EXPECT_EQ(fault, "/nonexistent/machine.json: No such file or directory");
}

TEST(MachineFile, TakesWhatLiesAtItsLimits)
{
    std::string fault;
    const auto bytes = "00099aAfF0" + std::string(54, '9');
    const auto machine =
        parseMachine(R"({"sysctl": {"a": -2147483648, "b": 4294967295}, "exchangeDelay": 60000, "smc": [{"key": "   ~",
        "type": "\u0000\u007f\u0080\u00ff", "bytes": ")"
                + bytes + R"(", "size": 4294967295, "fails": true}, {"key": "TAAA", "size": 0}],
        "hid": [{"locationID": 18446744073709551615, "temperature": 18446744073709551615}, {"locationID": 1.5},
        {"locationID": "text"}]})",
            fault);
    ASSERT_TRUE(machine) << fault;
    EXPECT_EQ(machine->systemValues.at("a"), std::string("\0\0\0\x80", 4));
    EXPECT_EQ(machine->systemValues.at("b"), "\xFF\xFF\xFF\xFF");
    EXPECT_EQ(machine->exchangeDelay.count(), 60000);
    EXPECT_EQ(machine->profilerOutput, R"({"SPBluetoothDataType": []})");
    const auto& [name, type, readings, size, fails] = machine->smc->front();
    EXPECT_EQ(name, fourCharCode("   ~"));
    EXPECT_EQ(type, 0x007F80FFu);
    EXPECT_EQ(readings.front().bytes, std::string("\x00\x09\x9a\xaf\xf0", 5) + std::string(27, '\x99'));
    EXPECT_EQ(size, 4294967295u);
    EXPECT_TRUE(fails);
    EXPECT_EQ(machine->smc->back().size, 0u);
    EXPECT_EQ(machine->smc->back().type, 0u);
    EXPECT_FALSE(machine->smc->back().fails);
    EXPECT_EQ(machine->smc->back().readings.size(), 1u);
    EXPECT_EQ(machine->hid.front().temperature, 18446744073709551616.0);
    EXPECT_EQ(faultOf(R"("exchangeDelay": 60000.5)"), "exchangeDelay: not a number from 0 to 60000 (milliseconds)");
    EXPECT_EQ(faultOf(R"("hid": {})"), "hid: not a list");
    EXPECT_EQ(rowFault("5"), "smc[1]: not an object");
    EXPECT_EQ(rowFault(R"({"key": "TA0P", "size": -1})"), "smc[1].size: not a whole number from 0 to 4294967295");
    for (const auto* key : {"\\u001f", "\\u007f", "\\ud800"})
        EXPECT_FALSE(rowFault(R"({"key": "TA0)" + std::string(key) + "\"}").empty()) << key;
    for (const auto* digits : {"0/", "0:", "0@", "0G", "0`", "0g"})
        EXPECT_EQ(
            rowFault(R"({"key": "TA0P", "bytes": ")" + std::string(digits) + "\"}"), "smc[1].bytes: not hexadecimal");
    for (const auto* number : {"-2147483649", "4294967296"}) {
        EXPECT_FALSE(parseMachine(R"({"sysctl": {"a": )" + std::string(number) + "}}", fault));
        EXPECT_EQ(fault, "sysctl.a: not a whole number from -2147483648 to 4294967295");
    }
    EXPECT_FALSE(parseMachine(R"({"sysctl": []})", fault));
    EXPECT_EQ(fault, "sysctl: not an object");
}

TEST(MachineFile, PrintsTheProfilersReportAsItStands)
{
    std::string fault;
    const auto machine = parseMachine(
        R"({"sysctl": {}, "bluetooth": {"z": [1.0, {"b": 1, "a": null}], "a": 2}, "watch": "{bad"})", fault);
    EXPECT_EQ(machine->profilerOutput, R"({"z": [1.0, {"b": 1, "a": null}], "a": 2})");
    EXPECT_EQ(machine->watchFile, "{bad");
}

TEST(MachineFile, OfEachShippedMachineGivesReadings)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ORV_MACHINES)) {
        std::string fault;
        const auto machine = Recording::open(entry.path(), fault);
        ASSERT_TRUE(machine) << fault;
        EXPECT_GE(machine->machine().smc->size(), 276u) << entry.path();
        ++count;
    }
    EXPECT_GE(count, 6);
}

TEST(SimulatedMac, AnswersAsARealSMCDoes)
{
    TestMac mac(intelText(
        R"({"key": "TAAA", "type": "ui8\u0000", "bytes": ["01", "02"], "size": 3}, {"key": "TBBB", "type": "ÿÿÿÿ"})"));
    Hardware::KeyInfo info;
    Hardware::Bytes bytes{};
    EXPECT_EQ(mac.hardware.keyInfo(fourCharCode("TXXX"), info).result, 0x84);
    EXPECT_EQ(info.dataSize, 0u);
    mac.hardware.keyInfo(fourCharCode("TAAA"), info);
    EXPECT_EQ(info.dataSize, 3u);
    EXPECT_EQ(info.dataType, 0x75693800u);
    for (const auto expected : {1, 2, 1}) {
        mac.hardware.readBytes(fourCharCode("TAAA"), bytes);
        EXPECT_EQ(bytes[0], expected);
    }
    mac.hardware.keyInfo(fourCharCode("TBBB"), info);
    EXPECT_EQ(info.dataType, 0xFFFFFFFFu);
    std::uint32_t key = 7;
    EXPECT_NE(mac.hardware.keyAtIndex(2, key).result, 0);
    mac.smc.open();
    EXPECT_EQ(mac.smc.getValue("#KEY"), 2.0);
}

TEST(SimulatedMac, HasServicesOfOneKindWithOneEvent)
{
    TestMac mac(machineText("Mac14,2", "Apple M2", "", R"({"temperature": 3})"));
    struct Case {
        std::int32_t page, usage, type, field;
        std::optional<double> event; // nothing without a service too
        int services = 1;
    };
    const Case cases[]{{0xff00, 5, 15, 0xf0000, 3}, {0xff00, 5, 14, 0xf0000, {}}, {0xff00, 5, 15, 0xf0001, {}},
        {0xff01, 5, 15, 0xf0000, {}, 0}, {0xff00, 4, 15, 0xf0000, {}, 0}};
    for (const auto& each : cases) {
        int visited = 0;
        const auto visit = [&](HIDService& service) {
            ++visited;
            EXPECT_EQ(service.eventValue(each.type, each.field), each.event) << each.type << " " << each.field;
        };
        EXPECT_TRUE(mac.simulation.mac.forEachService(each.page, each.usage, visit)) << "a client there is";
        EXPECT_EQ(visited, each.services) << each.page << " " << each.usage;
    }
}

TEST(SimulatedMac, TakesTheNearestReadingThatATypeHolds)
{
    TestMac mac(machineText("Mac14,2", "Apple M2", R"({"key": "TAAA", "type": "sp78", "bytes": ["0000", "0100"]},
        {"key": "TBBB", "type": "flt ", "bytes": "00000000"}, {"key": "TCCC", "type": "ui8 ", "bytes": "0000"},
        {"key": "TDDD", "type": "ioft", "bytes": "00"}, {"key": "TEEE", "type": "sp78", "bytes": "000000"},
        {"key": "F0Ac", "type": "fpe2", "bytes": "0000"}, {"key": "PAAA", "type": "sp78", "bytes": "0000"})",
        R"({"locationID": 1413563717, "temperature": 3}, {"locationID": 1416638569})"));
    auto& machine = mac.simulation.mac;
    mac.smc.open();
    EXPECT_TRUE(machine.setTemperature("TAAA", 200));
    EXPECT_EQ(mac.smc.getValue("TAAA"), 127.99609375);
    EXPECT_TRUE(machine.setTemperature("TAAA", 40.001));
    EXPECT_EQ(mac.smc.getValue("TAAA"), 40.0);
    EXPECT_EQ(mac.smc.getValue("TAAA"), 40.0);
    EXPECT_TRUE(machine.setTemperature("TAAA", -5));
    EXPECT_EQ(mac.smc.getValue("TAAA"), std::nullopt);
    EXPECT_TRUE(machine.setTemperature("TBBB", 1e300));
    EXPECT_GT(*mac.smc.getValue("TBBB"), 1e38);
    EXPECT_TRUE(machine.setTemperature("TCCC", 40.6));
    EXPECT_EQ(mac.smc.getValue("TCCC"), 41.0);
    EXPECT_TRUE(machine.setFanSpeed("F0Ac", 1999.9));
    EXPECT_EQ(mac.smc.getValue("F0Ac"), 2000.0);
    EXPECT_TRUE(machine.setTemperature("Tp0i", 44));
    for (const auto* key : {"TDDD", "TEEE", "PAAA", "TXXX", "F0Ac", "", "TAAAA"})
        EXPECT_FALSE(machine.setTemperature(key, 40)) << key;
    EXPECT_FALSE(machine.setTemperature("TBBB", std::numeric_limits<double>::quiet_NaN()));
    EXPECT_FALSE(machine.setFanSpeed("F0Ac", std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(machine.setFanSpeed("Tp0i", 2000));
}
