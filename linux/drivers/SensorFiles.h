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
/// revolutions per minute. All of it is readable without privileges. A file that does not read as a number is no key.
class SensorFiles final : public SMCKeySource {
public:
    /// The applesmc driver's, labelled with the SMC key; values of type "sp78" and "fpe2". They lie in `folder` or,
    /// with newer kernels, in hwmon/hwmonN below it. Nothing without any.
    static std::unique_ptr<SensorFiles> applesmc(SMCAttributes& calls, const std::string& folder);
    /// The macsmc driver's, labelled with texts of which some stand for a key; values of type "flt ". `hwmonFolder` is
    /// where the folders hwmonN lie. Nothing without any.
    static std::unique_ptr<SensorFiles> macsmc(SMCAttributes& calls, const std::string& hwmonFolder);

    /// The folder that the next driver to come gets of those hwmonN in `hwmonFolder`.
    static std::string nextHwmonFolder(SMCAttributes& calls, const std::string& hwmonFolder);

    const std::vector<SMCKey>& keys() const override { return listedKeys; }
    bool isComplete() const override { return false; }
    SMCOutcome readBytes(std::size_t position, Hardware::Bytes& bytes) override;

private:
    enum class Form { temperature, speed, temperatureFloat, speedFloat };

    explicit SensorFiles(SMCAttributes& calls);

    void addApplesmcSensors(const std::string& folder);
    void addMacsmcSensors(const std::string& folder);
    void addMacsmcFan(const std::string& stem);
    void addFan(std::int64_t fan, const std::string& stem, Form form);
    void add(std::uint32_t name, Form form, const std::string& path);
    bool isListed(std::uint32_t name) const;
    std::string text(const std::string& path) const;

    SMCAttributes& calls;
    std::vector<SMCKey> listedKeys;
    struct Sensor {
        Form form;
        KeptAttribute file;
    };
    std::vector<Sensor> sensors; // beside listedKeys
};

} // namespace orv
