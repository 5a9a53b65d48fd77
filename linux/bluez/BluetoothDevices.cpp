#include "linux/bluez/BluetoothDevices.h"

#include "base/File.h"
#include "linux/bluez/BluezNames.h"
#include "linux/bus/BusHandles.h"
#include "linux/bus/BusMessageReader.h"
#include "readings/Text.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace orv {

namespace {

constexpr std::uint64_t patience = 10'000'000; // microseconds
constexpr std::uint8_t largestPercentage = 100;

std::string upperCase(std::string text)
{
    for (auto& character : text) {
        if (character >= 'a' && character <= 'z')
            character = static_cast<char>(character - 'a' + 'A');
    }
    return text;
}

bool isAddress(std::string_view text)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    constexpr std::size_t length = 17;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const bool isSeparator = index % 3 == 2;
        if (isSeparator ? text[index] != ':' : digits.find(text[index]) == digits.npos)
            return false;
    }
    return text.size() == length;
}

std::string textOf(const Dictionary& properties, std::string_view name)
{
    const auto* text = properties.findAs<std::string>(name);
    return text ? *text : "";
}

std::optional<std::uint8_t> percentageOf(const Dictionary* battery)
{
    const auto* percentage = battery ? battery->findAs<std::int64_t>("Percentage") : nullptr;
    const bool isPercentage = percentage && *percentage >= 0 && *percentage <= largestPercentage;
    return isPercentage ? std::optional(static_cast<std::uint8_t>(*percentage)) : std::nullopt;
}

// An object of BlueZ by its interfaces; nothing when it is no device but, say, an adapter.
std::optional<BluetoothDevice> deviceOf(const Dictionary& interfaces)
{
    const auto* properties = interfaces.findAs<Dictionary>(bluezDevice);
    const auto address = properties ? upperCase(textOf(*properties, "Address")) : "";
    if (address.empty())
        return std::nullopt;
    const auto name = textOf(*properties, "Alias");
    const auto* isConnected = properties->findAs<bool>("Connected");
    return BluetoothDevice{address, name.empty() ? address : name, isConnected && *isConnected,
        percentageOf(interfaces.findAs<Dictionary>(bluezBattery))};
}

std::string attribute(const std::filesystem::path& supply, const char* name)
{
    constexpr std::size_t largestAttribute = 4096;
    return firstLineOfFile((supply / name).string(), largestAttribute);
}

std::optional<BluetoothDevice> hidDevice(const std::filesystem::path& supply)
{
    constexpr std::string_view prefix = "hid-";
    constexpr std::string_view suffix = "-battery";
    const auto name = supply.filename().string();
    if (name.size() < prefix.size() + suffix.size() || !name.starts_with(prefix) || !name.ends_with(suffix))
        return std::nullopt;
    const auto address = upperCase(name.substr(prefix.size(), name.size() - prefix.size() - suffix.size()));
    const auto percentage = decimalInteger(attribute(supply, "capacity"));
    if (!isAddress(address) || !percentage || *percentage < 0 || *percentage > largestPercentage)
        return std::nullopt;
    const auto model = repairedUTF8(attribute(supply, "model_name")); // the kernel may cut it within a character
    return BluetoothDevice{address, model.empty() ? address : model, true, static_cast<std::uint8_t>(*percentage)};
}

BluetoothDevice* findDevice(std::vector<BluetoothDevice>& devices, const std::string& address)
{
    const auto found = std::ranges::find(devices, address, &BluetoothDevice::address);
    return found == devices.end() ? nullptr : &*found;
}

Dictionary properties(const BluetoothDevice& device)
{
    Dictionary result;
    result.set("device_address", device.address);
    if (device.percentage)
        result.set("device_batteryLevelMain", std::to_string(*device.percentage) + '%');
    return result;
}

} // namespace

std::vector<BluetoothDevice> bluezDevices()
{
    BusConnection bus;
    BusMessage call;
    BusMessage reply;
    const bool isCalled = sd_bus_open_system(bus.out()) >= 0
        && sd_bus_message_new_method_call(
               bus.get(), call.out(), bluezService, "/", "org.freedesktop.DBus.ObjectManager", "GetManagedObjects")
            >= 0
        && sd_bus_message_set_auto_start(call.get(), 0) >= 0;
    if (!isCalled || sd_bus_call(bus.get(), call.get(), patience, nullptr, reply.out()) < 0)
        return {};
    return readManagedObjects(reply.get());
}

std::vector<BluetoothDevice> readManagedObjects(sd_bus_message* reply)
{
    std::vector<BluetoothDevice> devices;
    for (const auto& [path, object] : readBusDictionary(reply)) {
        const auto* interfaces = object.as<Dictionary>();
        if (auto device = interfaces ? deviceOf(*interfaces) : std::nullopt)
            devices.push_back(std::move(*device));
    }
    return devices;
}

std::vector<BluetoothDevice> hidDevices(const std::string& root)
{
    std::vector<BluetoothDevice> devices;
    std::error_code error;
    std::filesystem::directory_iterator supply(root + "/sys/class/power_supply", error);
    for (; !error && supply != std::filesystem::directory_iterator(); supply.increment(error)) {
        if (auto device = hidDevice(supply->path()))
            devices.push_back(std::move(*device));
    }
    return devices;
}

// A device is listed by each adapter that knows it.
std::vector<BluetoothDevice> uniqueDevices(std::vector<BluetoothDevice> bluez, const std::vector<BluetoothDevice>& hid)
{
    std::vector<BluetoothDevice> devices;
    const auto preference = [](const BluetoothDevice& device) {
        return std::pair(device.isConnected, device.percentage.has_value());
    };
    for (auto& device : bluez) {
        auto* known = findDevice(devices, device.address);
        if (!known)
            devices.push_back(std::move(device));
        else if (preference(device) > preference(*known))
            *known = std::move(device);
    }
    for (const auto& device : hid) {
        auto* known = findDevice(devices, device.address);
        if (!known)
            devices.push_back(device);
        else if (known->isConnected && !known->percentage)
            known->percentage = device.percentage;
    }
    return devices;
}

// A list without devices is absent, as in the report that this one takes the place of.
Value profilerReport(const std::vector<BluetoothDevice>& devices)
{
    Dictionary controller;
    for (const bool isConnected : {true, false}) {
        Array list;
        for (const auto& device : devices) {
            if (device.isConnected == isConnected)
                list.push_back(Dictionary({{device.name, properties(device)}}));
        }
        if (!list.empty())
            controller.set(isConnected ? "device_connected" : "device_not_connected", std::move(list));
    }
    return Dictionary({{"SPBluetoothDataType", Array{std::move(controller)}}});
}

} // namespace orv
