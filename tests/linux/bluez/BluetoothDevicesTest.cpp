#include "linux/bluez/BluetoothDevices.h"

#include "bluetooth/SystemProfilerReport.h"
#include "tests/support/UnansweredBus.h"
#include "json/JSONWriter.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace orv {

namespace {

const std::string one = "AA:BB:CC:DD:EE:01";
const std::string two = "AA:BB:CC:DD:EE:02";

std::string report(std::vector<BluetoothDevice> bluez, const std::vector<BluetoothDevice>& hid = {})
{
    return writeJSON(profilerReport(uniqueDevices(std::move(bluez), hid)), KeyOrder::asListed);
}

TEST(BluetoothDevicesTest, ReportHasTheLayoutThatIsReadElsewhere)
{
    const auto text = report({{one, "Key \"board\"", true, 85}, {two, "Mouse", false, std::nullopt}});
    EXPECT_EQ(text,
        R"({"SPBluetoothDataType": [{"device_connected": [{"Key \"board\"": {"device_address": "AA:BB:CC:DD:EE:01", )"
        R"("device_batteryLevelMain": "85%"}}], "device_not_connected": [{"Mouse": {"device_address": )"
        R"("AA:BB:CC:DD:EE:02"}}]}]})");
    const auto levels = parseBluetoothReport(text);
    ASSERT_EQ(levels.size(), 1u);
    EXPECT_EQ(levels.at("aa-bb-cc-dd-ee-01"), Dictionary({{"batteryLevel", std::int64_t{85}}}));
    EXPECT_EQ(report({}), R"({"SPBluetoothDataType": [{}]})");
}

TEST(BluetoothDevicesTest, DevicesAreFoundAmongWhateverElseBluezTells)
{
    const BusConnection bus(unansweredBus());
    const auto reply = newMessage(bus.get());
    // An adapter, a device with properties of every kind and a level beyond 100, and one whose name is a number.
    ASSERT_GE(sd_bus_message_append(reply.get(), "a{oa{sa{sv}}}", 3, //
                  "/org/bluez/hci0", 1, "org.bluez.Adapter1", 1, "Address", "s", "AA:BB:CC:DD:EE:00", //
                  "/org/bluez/hci0/one", 3, //
                  "org.bluez.Device1", 8, "UUIDs", "as", 1, "1812", "RSSI", "n", -40, "Class", "u", 1280, //
                  "Adapter", "o", "/org/bluez/hci0", "ManufacturerData", "a{qv}", 1, 76, "ay", 2, 1, 2, //
                  "Address", "s", "aa:bb:cc:dd:ee:01", "Connected", "b", 1, "Alias", "s", "Mouse", //
                  "org.bluez.Battery1", 1, "Percentage", "y", 101, "org.bluez.Input1", 0, //
                  "/org/bluez/hci0/two", 2, //
                  "org.bluez.Battery1", 1, "Percentage", "y", 85, //
                  "org.bluez.Device1", 2, "Alias", "u", 5, "Address", "s", two.c_str()),
        0);
    ASSERT_GE(sd_bus_message_seal(reply.get(), 1, 0), 0);
    EXPECT_EQ(
        report(readManagedObjects(reply.get())), report({{one, "Mouse", true, std::nullopt}, {two, two, false, 85}}));
}

TEST(BluetoothDevicesTest, NoDeviceIsListedTwice)
{
    const BluetoothDevice absent{one, "Absent", false, 10};
    const BluetoothDevice bare{one, "Bare", true, std::nullopt};
    const BluetoothDevice full{one, "Full", true, 70};
    const BluetoothDevice kernel{one, "Kernel", true, 60};
    const auto chosen = [](std::vector<BluetoothDevice> bluez, const std::vector<BluetoothDevice>& hid) {
        const auto devices = uniqueDevices(std::move(bluez), hid);
        EXPECT_EQ(devices.size(), 1u);
        const auto level = devices[0].percentage ? std::to_string(*devices[0].percentage) : "none";
        return devices[0].name + (devices[0].isConnected ? " + " : " - ") + level;
    };
    EXPECT_EQ(chosen({absent, bare}, {}), "Bare + none");
    EXPECT_EQ(chosen({bare, full, absent}, {}), "Full + 70");
    EXPECT_EQ(chosen({bare}, {kernel}), "Bare + 60");
    EXPECT_EQ(chosen({full}, {kernel}), "Full + 70");
    EXPECT_EQ(chosen({absent}, {kernel}), "Absent - 10");
    EXPECT_EQ(chosen({}, {kernel}), "Kernel + 60");
}

TEST(BluetoothDevicesTest, KernelsBatteriesAreThoseOfBluetoothAddresses)
{
    const std::filesystem::path root = testing::TempDir() + "/hid-batteries";
    const auto addSupply = [&](const std::string& name, const std::string& capacity) {
        const auto folder = root / "sys/class/power_supply" / name;
        std::filesystem::create_directories(folder);
        std::ofstream(folder / "capacity") << capacity;
    };
    addSupply("hid-aa:bb:cc:dd:ee:01-battery", "60\n");
    addSupply("hid-aa:bb:cc:dd:ee:02-battery", "101\n");
    addSupply("hid-aa:bb:cc:dd:ee:03-battery", "-1\n");
    addSupply("hid-0018DEADBEEF-battery", "50\n");
    addSupply("hid-aa-bb-cc-dd-ee-ff-battery", "50\n");
    addSupply("hid-battery", "50\n");
    addSupply("BAT0", "50\n");
    std::string cut = "Tastatur";
    while (cut.size() <= 127)
        cut += "\u00e4";
    cut.resize(127); // as the kernel does
    std::ofstream(root / "sys/class/power_supply/hid-aa:bb:cc:dd:ee:01-battery/model_name") << cut << '\n';
    const auto devices = hidDevices(root);
    ASSERT_EQ(devices.size(), 1u);
    EXPECT_EQ(devices[0].address, one);
    EXPECT_EQ(devices[0].percentage, 60);
    EXPECT_EQ(devices[0].name, cut.substr(0, 126) + "\ufffd");
    EXPECT_EQ(parseBluetoothReport(report({}, devices)).size(), 1u);
    EXPECT_TRUE(devices[0].isConnected) << "else there would be no battery";
    std::filesystem::remove_all(root);
    EXPECT_TRUE(hidDevices(root).empty());
}

} // namespace

} // namespace orv
