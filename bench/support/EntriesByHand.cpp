#include "bench/support/EntriesByHand.h"

#include "thermal/Orv_SMCProfileKeys.h"

#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <cstdint>

namespace orv {

namespace {

std::int64_t number(const FileDescriptor& file)
{
    char text[32];
    const auto count = pread(file.get(), text, sizeof(text), 0);
    std::int64_t parsed = 0;
    std::from_chars(text, text + (count > 0 ? count : 0), parsed);
    return parsed;
}

} // namespace

EntriesByHand::EntriesByHand(const DriverFiles& driver)
{
    for (const auto& [key, paths] : driver.sensors) {
        const auto* row = Orv_SMCProfileKeys::intelSensorKeys.find(key);
        auto& sensor = sensors.emplace_back(Sensor{key, row ? std::string(row->name) : "Fan 1", {}});
        for (const auto& path : paths)
            sensor.files.emplace_back(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    }
}

EntriesByHand::Entries EntriesByHand::collect() const
{
    Entries entries;
    entries.reserve(sensors.size());
    for (const auto& [key, title, files] : sensors) {
        if (files.size() == 1)
            entries.emplace_back(key, TemperatureEntry{title, static_cast<double>(number(files[0])) / 1000});
        else
            entries.emplace_back(key, FanEntry{title, number(files[0]), number(files[1]), number(files[2])});
    }
    return entries;
}

} // namespace orv
