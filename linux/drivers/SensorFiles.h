#pragma once

#include "linux/drivers/SMCAttributes.h"
#include "linux/drivers/SMCKeySource.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

/// The keys that a driver serves as hwmon files: tempN_input in millidegrees and fanN_input, _min and _max in
/// revolutions per minute. All of it is readable without privileges.
class SensorFiles final : public SMCKeySource {
public:
    /// The applesmc driver's, labelled with the SMC key; values of type "sp78" and "fpe2". Nothing without any.
    static std::unique_ptr<SensorFiles> applesmc(SMCAttributes& calls, const std::string& folder);
    /// The macsmc driver's, labelled with texts of which some stand for a key; values of type "flt ". `hwmonFolder` is
    /// where the folders hwmonN lie. Nothing without any.
    static std::unique_ptr<SensorFiles> macsmc(SMCAttributes& calls, const std::string& hwmonFolder);

    const std::vector<SMCKey>& keys() const override { return listedKeys; }
    SMCOutcome readBytes(std::size_t position, Hardware::Bytes& bytes) override;

private:
    enum class Form { temperature, speed, temperatureFloat, speedFloat };

    SensorFiles(SMCAttributes& calls, std::string folder);

    void add(std::uint32_t name, Form form, const std::string& file);
    void addFan(std::int64_t fan, int number, Form form);
    void addMacsmcSensors();
    void addMacsmcFan(int number);
    std::string text(const std::string& file) const;
    bool exists(const std::string& file) const;

    SMCAttributes& calls;
    const std::string folder;
    std::vector<SMCKey> listedKeys;
    struct Sensor {
        Form form;
        KeptAttribute file;
    };
    std::vector<Sensor> sensors; // beside listedKeys
};

} // namespace orv
