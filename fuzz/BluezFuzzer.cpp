// Messages of the shapes that BlueZ sends, with contents and types from the input, to all that read them.

#include "bluetooth/SystemProfilerReport.h"
#include "fuzz/support/Answers.h"
#include "fuzz/support/Fuzzer.h"
#include "platform/json/JSONWriter.h"
#include "platform/linux/BluetoothDevices.h"
#include "platform/linux/BluezEvents.h"
#include "platform/linux/BluezNames.h"
#include "tests/support/UnansweredBus.h"

using namespace orv;

namespace {

/// Builds a message as the input says. What cannot be appended is left out by the bus library itself.
class MessageBuilder {
public:
    MessageBuilder(sd_bus_message* busMessage, Answers& given)
        : message(busMessage)
        , answers(given)
    {
    }

    void appendObjects()
    {
        container('a', "{oa{sa{sv}}}", [&] {
            for (auto count = answers.byte() % 8; count > 0; --count)
                container('e', "oa{sa{sv}}", [&] { appendObject(); });
        });
    }

    void appendObject()
    {
        sd_bus_message_append_basic(message, 'o', answers.byte() % 2 == 0 ? "/org/bluez/hci0/dev" : "/");
        appendInterfaces();
    }

    void appendProperties()
    {
        container('a', "{sv}", [&] {
            for (auto count = answers.byte() % 6; count > 0; --count) {
                container('e', "sv", [&] {
                    appendName({"Address", "Alias", "Connected", "Paired", "Percentage"});
                    appendVariant();
                });
            }
        });
    }

    void appendName(std::initializer_list<const char*> known)
    {
        const auto place = answers.byte() % (known.size() + 1);
        const auto other = answers.text(20);
        sd_bus_message_append_basic(message, 's', place < known.size() ? known.begin()[place] : other.c_str());
    }

    void appendVariant(int depth = 0)
    {
        switch (answers.byte() % 6) {
        case 0:
            return container('v', "s", [&] { appendName({"AA:BB:CC:DD:EE:01", "aa:bb:cc:dd:ee:02", "Mouse", "85%"}); });
        case 1:
            return container('v', "b", [&] { appendBasic<int>('b', answers.byte() % 2); });
        case 2:
            return container('v', "y", [&] { appendBasic('y', answers.byte()); });
        case 3:
            return container('v', "d", [&] { appendBasic('d', answers.number<double>()); });
        case 4:
            return container('v', "a{sv}", [&] { appendProperties(); });
        default:
            return container('v', depth < 8 ? "v" : "u",
                [&] { depth < 8 ? appendVariant(depth + 1) : appendBasic('u', answers.number<std::uint32_t>()); });
        }
    }

private:
    void appendInterfaces()
    {
        container('a', "{sa{sv}}", [&] {
            for (auto count = answers.byte() % 4; count > 0; --count) {
                container('e', "sa{sv}", [&] {
                    appendName({bluezDevice, bluezBattery});
                    appendProperties();
                });
            }
        });
    }

    template <typename Append> void container(char type, const char* contents, Append append)
    {
        if (answers.isAtEnd() || sd_bus_message_open_container(message, type, contents) < 0)
            return;
        append();
        sd_bus_message_close_container(message);
    }

    template <typename Basic> void appendBasic(char type, Basic value)
    {
        sd_bus_message_append_basic(message, type, &value);
    }

    sd_bus_message* message;
    Answers& answers;
};

void append(MessageBuilder builder, sd_bus_message* message, std::uint8_t kind)
{
    if (kind % 4 == 0)
        return builder.appendObjects();
    if (kind % 4 == 1)
        return builder.appendObject();
    if (kind % 4 == 3)
        return builder.appendVariant();
    sd_bus_message_append_basic(message, 's', bluezDevice);
    builder.appendProperties();
}

void requireSameDevices(const std::vector<BluetoothDevice>& devices)
{
    const auto levels = parseBluetoothReport(writeJSON(profilerReport(devices), KeyOrder::asListed));
    for (const auto& device : devices)
        require(!device.percentage || *device.percentage <= 100, "a percentage is one");
    require(levels.size() <= devices.size(), "no device is made up");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static auto* const bus = unansweredBus();
    require(bus, "there is a bus");
    Answers answers(textOf(data, size));
    const auto kind = answers.byte();
    sd_bus_message* message = nullptr;
    require(sd_bus_message_new_signal(bus, &message, "/", "org.orv.Fuzzed", "Signal") >= 0, "there is a message");
    append({message, answers}, message, kind);
    if (sd_bus_message_seal(message, 1, 0) >= 0) {
        requireSameDevices(uniqueDevices(readManagedObjects(message), {}));
        sd_bus_message_rewind(message, 1);
        changedProperties(message);
        sd_bus_message_rewind(message, 1);
        addedInterfaces(message);
    }
    sd_bus_message_unref(message);
    return 0;
}
