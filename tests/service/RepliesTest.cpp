#include "service/Replies.h"

#include "service/ValueSink.h"
#include "json/JSONReader.h"
#include "json/JSONWriter.h"

#include <gtest/gtest.h>

using namespace orv;

namespace {

BluetoothBatteryDictionary watchFile(const std::string& text)
{
    std::string fault;
    const auto value = parseStrictJSON(text, fault);
    BluetoothBatteryDictionary entries;
    for (const auto& [key, entry] : *value->as<Dictionary>())
        entries.emplace(key, *entry.as<Dictionary>());
    return entries;
}

std::string bluetoothReply(const std::string& text, const ReplyLimits& limits)
{
    ValueSink sink;
    writeBluetoothReply(watchFile(text), sink, limits);
    return writeJSON(sink.take(), KeyOrder::sorted);
}

std::string nested(std::size_t levels)
{
    return std::string(levels, '[') + "1" + std::string(levels, ']');
}

} // namespace

TEST(ThermalReply, HasFourMembersATemperatureAndSixAFan)
{
    ValueSink sink;
    writeThermalReply(
        {{"F0Ac", FanEntry{"Left Side", 2000, 1200, 6500}}, {"TC0P", TemperatureEntry{"CPU Proximity", 40}}}, sink);
    EXPECT_EQ(writeJSON(sink.take(), KeyOrder::sorted),
        R"({"F0Ac": {"maxvalue": 6500, "minvalue": 1200, "title": "Left Side", "type": "fans", "unit": "rpm", )"
        R"("value": 2000}, "TC0P": {"title": "CPU Proximity", "type": "temperature", "unit": "celcius", "value": 40.0}})");
}

TEST(BluetoothReply, LeavesOutNullsAtAnyDepth)
{
    EXPECT_EQ(
        bluetoothReply(R"({"w": {"a": null, "b": [null, 1, [null]], "c": {"d": null}, "e": true, "f": 1.5}, "v": {}})",
            propertyListLimits),
        R"({"v": {}, "w": {"b": [1, []], "c": {}, "e": true, "f": 1.5}})");
}

TEST(BluetoothReply, KeepsWhatAPropertyListCanCarry)
{
    const auto text = R"({"w": {"a": )" + nested(100) + R"(, "b": 18446744073709551615, "c": "￿"}})";
    EXPECT_EQ(bluetoothReply(text, propertyListLimits), text);
}

TEST(BluetoothReply, LeavesOutWhatTheMessageBusCannotCarry)
{
    const auto reply = bluetoothReply(R"({"k\u0000": {"t\ufffe": "a\u0000b￿c"}, "w": {"deep": )" + nested(15)
            + R"(, "deeper": )" + nested(16) + "}}",
        messageBusLimits);
    EXPECT_EQ(reply,
        R"({"k�": {"t�": "a�b�c"}, "w": {"deep": )" + nested(15) + R"(, "deeper": )" + std::string(16, '[')
            + std::string(16, ']') + "}}");
}

TEST(BluetoothReply, HoldsNoKeyTwiceWhereTheMessageBusReplacesCharacters)
{
    const auto reply = bluetoothReply(
        R"({"k\u0000": {"a\ufffe": 1, "b": 2, "a�": 3, "a\u0000": 4, "c\u0000": null, "c�": 5}, "k�": {}, "k\uffff": {}})",
        messageBusLimits);
    EXPECT_EQ(reply, R"({"k�": {"a�": 1, "b": 2, "c�": 5}})");
}
