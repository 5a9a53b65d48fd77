#include "linux/drivers/SensorFiles.h"

#include "base/File.h"
#include "linux/drivers/AttributeText.h"
#include "smc/Fans.h"
#include "smc/FourCharCode.h"

#include <algorithm>
#include <array>
#include <bit>
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

} // namespace

std::unique_ptr<SensorFiles> SensorFiles::applesmc(SMCAttributes& calls, const std::string& folder)
{
    std::unique_ptr<SensorFiles> source(new SensorFiles(calls, folder));
    for (int number = 1; number <= mostTemperatures; ++number) {
        const auto stem = "temp" + std::to_string(number);
        const auto label = source->text(stem + "_label");
        if (label.size() == 4)
            source->add(fourCharCode(label), Form::temperature, stem + "_input");
    }
    for (int number = 1; number <= mostFans; ++number)
        source->addFan(number - 1, number, Form::speed);
    return source->listedKeys.empty() ? nullptr : std::move(source);
}

std::unique_ptr<SensorFiles> SensorFiles::macsmc(SMCAttributes& calls, const std::string& hwmonFolder)
{
    for (int device = 0; device < mostHwmonFolders; ++device) {
        std::unique_ptr<SensorFiles> source(new SensorFiles(calls, hwmonFolder + "/hwmon" + std::to_string(device)));
        if (!source->text("name").starts_with("macsmc"))
            continue;
        source->addMacsmcSensors();
        if (!source->listedKeys.empty())
            return source;
    }
    return nullptr;
}

SMCOutcome SensorFiles::readBytes(std::size_t position, Hardware::Bytes& bytes)
{
    auto& sensor = sensors[position];
    std::array<char, 32> text;
    const auto count = sensor.file.read(text);
    const auto number =
        count > 0 ? attributeNumber({text.data(), static_cast<std::size_t>(count)}) : std::optional<std::int64_t>();
    if (!number)
        return SMCOutcome::failed();
    // No sensor reads a million degrees or revolutions: a larger number is clamped before anything is made of it.
    const auto value = static_cast<double>(std::clamp<std::int64_t>(*number, -1'000'000'000, 1'000'000'000));
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

SensorFiles::SensorFiles(SMCAttributes& driverCalls, std::string sensorFolder)
    : calls(driverCalls)
    , folder(std::move(sensorFolder))
{
}

void SensorFiles::add(std::uint32_t name, Form form, const std::string& file)
{
    constexpr std::array<Hardware::KeyInfo, 4> formats{{
        {.dataSize = 2, .dataType = fourCharCode("sp78")},
        {.dataSize = 2, .dataType = fourCharCode("fpe2")},
        {.dataSize = 4, .dataType = fourCharCode("flt ")},
        {.dataSize = 4, .dataType = fourCharCode("flt ")},
    }};
    listedKeys.push_back({name, formats[static_cast<std::size_t>(form)]});
    sensors.push_back({form, KeptAttribute(calls, folder + '/' + file)});
}

void SensorFiles::addFan(std::int64_t fan, int number, Form form)
{
    constexpr std::array<std::pair<std::string_view, const char*>, 3> files{{
        {Orv_SMCHelper::actualSpeed, "_input"},
        {Orv_SMCHelper::minimumSpeed, "_min"},
        {Orv_SMCHelper::maximumSpeed, "_max"},
    }};
    const auto stem = "fan" + std::to_string(number);
    for (const auto& [speed, ending] : files) {
        if (exists(stem + ending))
            add(fourCharCode(Orv_SMCHelper::fanKey(fan, speed)), form, stem + ending);
    }
}

void SensorFiles::addMacsmcSensors()
{
    for (int number = 1; number <= mostTemperatures; ++number) {
        const auto stem = "temp" + std::to_string(number);
        const auto known = std::ranges::find(macsmcTemperatures, text(stem + "_label"), &LabelledKey::label);
        if (known != macsmcTemperatures.end())
            add(fourCharCode(known->key), Form::temperatureFloat, stem + "_input");
    }
    for (int number = 1; number <= mostFans; ++number)
        addMacsmcFan(number);
}

void SensorFiles::addMacsmcFan(int number)
{
    const auto known =
        std::ranges::find(macsmcFans, text("fan" + std::to_string(number) + "_label"), &LabelledFan::label);
    if (known != macsmcFans.end())
        addFan(known->fan, number, Form::speedFloat);
}

std::string SensorFiles::text(const std::string& file) const
{
    std::array<char, 64> text;
    const auto count = KeptAttribute(calls, folder + '/' + file).read(text);
    return std::string(firstLine({text.data(), count < 0 ? 0 : static_cast<std::size_t>(count)}));
}

bool SensorFiles::exists(const std::string& file) const
{
    return KeptAttribute(calls, folder + '/' + file).open();
}

} // namespace orv
