#pragma once

#include "hardware/Hardware.h"
#include "platform/HIDEventSystem.h"
#include "simulated/Recording.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

/// A Mac from a machine file: the SMC, the system values and the HID services. Main thread only.
class SimulatedMac final : public Hardware, public HIDEventSystem {
public:
    explicit SimulatedMac(const MachineFile& machine);

    bool hasSMC() override;
    SMCOutcome keyInfo(std::uint32_t key, KeyInfo& info) override;
    SMCOutcome readBytes(std::uint32_t key, Bytes& bytes) override;
    SMCOutcome keyAtIndex(std::uint32_t index, std::uint32_t& key) override;
    std::optional<std::string> systemValue(const std::string& name) override;

    bool forEachService(std::int32_t page, std::int32_t usage, const std::function<void(HIDService&)>& visit) override;

    /// Gives a sensor, named by its SMC key ("T…"), its HID code or both, the nearest reading that its type holds.
    /// False when no such sensor can hold a reading, or for a number that is not finite.
    bool setTemperature(std::string_view key, double degrees);
    /// The same for an SMC key that begins with "F", in revolutions per minute.
    bool setFanSpeed(std::string_view key, double speed);

    /// Takes over what a step says of the SMC and of the HID services, which are this machine's.
    void apply(const RecordingStep& step);

private:
    struct Key {
        SMCRow row;
        std::size_t next = 0; // of the readings

        std::uint32_t size() const;
    };
    Key* findKey(std::uint32_t key);
    void addKeyCount();
    void delayExchange() const;
    bool setSMCValue(std::string_view key, char kind, double number);

    MachineFile machine;
    std::vector<Key> keys; // in index order
    std::map<std::uint32_t, Key*> keysByName;
    Key keyCount; // made up when no row names "#KEY"
};

} // namespace orv
