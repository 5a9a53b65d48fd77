// Messages of the shapes that BlueZ sends, with contents and types from the input, to all that read them.

#include "bluetooth/SystemProfilerReport.h"
#include "fuzz/support/Fuzzer.h"
#include "fuzz/support/MessageBuilder.h"
#include "linux/bluez/BluetoothDevices.h"
#include "linux/bluez/BluezEvents.h"
#include "linux/bluez/BluezNames.h"
#include "tests/support/UnansweredBus.h"
#include "json/JSONWriter.h"

using namespace orv;

namespace {

class BluezMessage : public MessageBuilder {
public:
    BluezMessage(sd_bus_message* message, Answers& given)
        : MessageBuilder(message, given,
              {"Address", "Alias", "Connected", "Paired", "Percentage", "AA:BB:CC:DD:EE:01", "aa:bb:cc:dd:ee:02",
                  "Mouse", "85%"})
        , answers(given)
    {
    }

    void appendObjects()
    {
        array("{oa{sa{sv}}}", 8, [&] { container('e', "oa{sa{sv}}", [&] { appendObject(); }); });
    }

    void appendObject()
    {
        constexpr std::array paths{"/org/bluez/hci0/dev", "/org/bluez/hci1/dev", "/"};
        append("o", paths[answers.byte() % paths.size()]);
        array("{sa{sv}}", 4, [&] {
            container('e', "sa{sv}", [&] {
                appendText({bluezDevice, bluezBattery});
                appendProperties();
            });
        });
    }

    void appendChange()
    {
        append("s", bluezDevice);
        appendProperties();
    }

private:
    Answers& answers;
};

void appendTo(BluezMessage message, std::uint8_t kind)
{
    switch (kind % 4) {
    case 0:
        return message.appendObjects();
    case 1:
        return message.appendObject();
    case 2:
        return message.appendChange();
    default:
        return message.appendVariant();
    }
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
    const auto message = newMessage(bus);
    require(message.get(), "there is a message");
    appendTo({message.get(), answers}, kind);
    if (sd_bus_message_seal(message.get(), 1, 0) < 0)
        return 0;
    requireSameDevices(uniqueDevices(readManagedObjects(message.get()), {}));
    sd_bus_message_rewind(message.get(), 1);
    changedProperties(message.get());
    sd_bus_message_rewind(message.get(), 1);
    addedInterfaces(message.get());
    return 0;
}
