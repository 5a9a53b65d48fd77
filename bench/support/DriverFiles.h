#pragma once

#include <string>
#include <vector>

namespace orv {

/// A folder with the driver's files of the Mac to measure, which goes with this object.
class DriverFiles {
public:
    DriverFiles();
    DriverFiles(const DriverFiles&) = delete;
    DriverFiles& operator=(const DriverFiles&) = delete;
    ~DriverFiles();

    static constexpr const char* folder = "/sys/devices/platform/applesmc.768"; ///< Below the root.

    struct Sensor {
        std::string key;
        std::vector<std::string> files; ///< A temperature's one, or a fan's speed, least and most speed.
    };

    const std::string root;
    std::vector<Sensor> sensors; ///< In ascending order of their keys.

private:
    void addTemperatures(const std::string& driver);
    void addFans(const std::string& driver);
};

} // namespace orv
