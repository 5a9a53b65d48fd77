#include "linux/drivers/SensorFiles.h"

#include "base/File.h"
#include "linux/drivers/AttributeText.h"
#include "smc/Fans.h"
#include "smc/FourCharCode.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cmath>
#include <optional>
#include <utility>

namespace orv {

namespace {

// Beyond what any of these drivers numbers. A number may be missing: every one is tried.
constexpr int mostTemperatures = 512;
constexpr int mostFans = Orv_SMCHelper::maxFanCount;
constexpr int mostHwmonFolders = 64;

struct LabelledKey {
    std::string_view label;
    std::string_view key;
};

// The texts come from the device tree. Sensors that no catalogue names are left out.
constexpr std::array<LabelledKey, 3> macsmcTemperatures{{
    {"Battery Hotspot", "TB0T"},
    {"Charge Regulator Temp", "TCHP"},
    {"WiFi/BT Module Temp", "TW0P"},
}};

struct LabelledFan {
    std::string_view label;
    std::int64_t fan;
};

constexpr std::array<LabelledFan, 3> macsmcFans{{{"Fan", 0}, {"Fan 1", 0}, {"Fan 2", 1}}};

void storeBigEndian(std::int64_t number, Hardware::Bytes& bytes)
{
    bytes[0] = static_cast<std::uint8_t>(number >> 8);
    bytes[1] = static_cast<std::uint8_t>(number);
}

void storeFloat(double number, Hardware::Bytes& bytes)
{
    const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(number));
    for (std::size_t index = 0; index < 4; ++index)
        bytes[index] = static_cast<std::uint8_t>(bits >> 8 * index);
}

std::optional<std::int64_t> readNumber(KeptAttribute& file)
{
    std::array<char, 32> text;
    const auto count = file.read(text);
    if (count < 0)
        return std::nullopt;
    return attributeNumber({text.data(), static_cast<std::size_t>(count)});
}

// No sensor reads a million degrees or revolutions: a larger number is clamped before anything is made of it.
double clampedNumber(std::int64_t number)
{
    return static_cast<double>(std::clamp<std::int64_t>(number, -1'000'000'000, 1'000'000'000));
}

} // namespace

std::unique_ptr<SensorFiles> SensorFiles::applesmc(SMCAttributes& calls, const std::string& folder)
{
    std::unique_ptr<SensorFiles> source(new SensorFiles(calls));
    source->addApplesmcSensors(folder);
    for (int device = 0; device < mostHwmonFolders; ++device) {
        const auto hwmon = folder + "/hwmon/hwmon" + std::to_string(device);
        if (calls.exists(hwmon))
            source->addApplesmcSensors(hwmon);
    }
    return source->listedKeys.empty() ? nullptr : std::move(source);
}

std::unique_ptr<SensorFiles> SensorFiles::macsmc(SMCAttributes& calls, const std::string& hwmonFolder)
{
    for (int device = 0; device < mostHwmonFolders; ++device) {
        const auto folder = hwmonFolder + "/hwmon" + std::to_string(device);
        std::unique_ptr<SensorFiles> source(new SensorFiles(calls));
        if (!source->text(folder + "/name").starts_with("macsmc"))
            continue;
        source->addMacsmcSensors(folder);
        if (!source->listedKeys.empty())
            return source;
    }
    return nullptr;
}

// The kernel gives out the lowest number that is free.
std::string SensorFiles::nextHwmonFolder(SMCAttributes& calls, const std::string& hwmonFolder)
{
    int device = 0;
    while (device < mostHwmonFolders && calls.exists(hwmonFolder + "/hwmon" + std::to_string(device)))
        ++device;
    return hwmonFolder + "/hwmon" + std::to_string(device);
}

SMCOutcome SensorFiles::readBytes(std::size_t position, Hardware::Bytes& bytes)
{
    auto& sensor = sensors[position];
    errno = 0;
    const auto number = readNumber(sensor.file);
    if (!number)
        return errno == ENODEV ? SMCOutcome::noDevice() : SMCOutcome::failed();
    const auto value = clampedNumber(*number);
    switch (sensor.form) {
    case Form::temperature:
        storeBigEndian(std::lround(std::clamp(value * 0.256, -32768.0, 32767.0)), bytes);
        break;
    case Form::speed:
        storeBigEndian(std::lround(std::clamp(value * 4, 0.0, 65535.0)), bytes);
        break;
    case Form::temperatureFloat:
        storeFloat(value / 1000, bytes);
        break;
    case Form::speedFloat:
        storeFloat(value, bytes);
        break;
    }
    return {};
}

SensorFiles::SensorFiles(SMCAttributes& driverCalls)
    : calls(driverCalls)
{
}

void SensorFiles::addApplesmcSensors(const std::string& folder)
{
    for (int number = 1; number <= mostTemperatures; ++number) {
        const auto stem = folder + "/temp" + std::to_string(number);
        const auto label = text(stem + "_label");
        if (label.size() == 4)
            add(fourCharCode(label), Form::temperature, stem + "_input");
    }
    for (int number = 1; number <= mostFans; ++number)
        addFan(number - 1, folder + "/fan" + std::to_string(number), Form::speed);
}

void SensorFiles::addMacsmcSensors(const std::string& folder)
{
    for (int number = 1; number <= mostTemperatures; ++number) {
        const auto stem = folder + "/temp" + std::to_string(number);
        const auto known = std::ranges::find(macsmcTemperatures, text(stem + "_label"), &LabelledKey::label);
        if (known != macsmcTemperatures.end())
            add(fourCharCode(known->key), Form::temperatureFloat, stem + "_input");
    }
    for (int number = 1; number <= mostFans; ++number)
        addMacsmcFan(folder + "/fan" + std::to_string(number));
}

void SensorFiles::addMacsmcFan(const std::string& stem)
{
    const auto known = std::ranges::find(macsmcFans, text(stem + "_label"), &LabelledFan::label);
    if (known != macsmcFans.end())
        addFan(known->fan, stem, Form::speedFloat);
}

void SensorFiles::addFan(std::int64_t fan, const std::string& stem, Form form)
{
    using namespace Orv_SMCHelper;
    add(fourCharCode(fanKey(fan, actualSpeed)), form, stem + "_input");
    add(fourCharCode(fanKey(fan, minimumSpeed)), form, stem + "_min");
    add(fourCharCode(fanKey(fan, maximumSpeed)), form, stem + "_max");
}

void SensorFiles::add(std::uint32_t name, Form form, const std::string& path)
{
    constexpr std::array<Hardware::KeyInfo, 4> formats{{
        {.dataSize = 2, .dataType = fourCharCode("sp78")},
        {.dataSize = 2, .dataType = fourCharCode("fpe2")},
        {.dataSize = 4, .dataType = fourCharCode("flt ")},
        {.dataSize = 4, .dataType = fourCharCode("flt ")},
    }};
    KeptAttribute file(calls, path);
    // For a fan of type "flt " applesmc has files that it refuses to read.
    if (isListed(name) || !readNumber(file))
        return;
    listedKeys.push_back({name, formats[static_cast<std::size_t>(form)]});
    sensors.push_back({form, std::move(file)});
}

bool SensorFiles::isListed(std::uint32_t name) const
{
    return std::ranges::find(listedKeys, name, &SMCKey::name) != listedKeys.end();
}

std::string SensorFiles::text(const std::string& path) const
{
    std::array<char, 64> text;
    const auto count = KeptAttribute(calls, path).read(text);
    return std::string(firstLine({text.data(), count < 0 ? 0 : static_cast<std::size_t>(count)}));
}

} // namespace orv
