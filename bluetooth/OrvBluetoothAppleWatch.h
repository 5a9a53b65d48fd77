#pragma once

#include "platform/Platform.h"
#include "readings/Readings.h"
#include "refresh/RefreshingSource.h"

#include <memory>
#include <optional>
#include <string>

namespace orv {

/// Keeps what the companion application found out about a watch: every 40 seconds and on wake the companion is opened,
/// and 5 seconds later its file is read. Main thread only.
class OrvBluetoothAppleWatch final : public RefreshingSource,
                                     public std::enable_shared_from_this<OrvBluetoothAppleWatch> {
public:
    static constexpr Seconds reloadInterval{40.0};
    static constexpr Seconds companionTime{5.0}; // for the companion to write its file

    /// The reader, with its first cycle under way.
    static std::shared_ptr<OrvBluetoothAppleWatch> create(const Platform& platform);
    static OrvBluetoothAppleWatch& shared();

    /// The last file that could be read: the companion's keys to its objects, unchanged.
    BluetoothBatteryDictionary systemBlueToothDictionary;

    /// The first application in the program's own resources; nothing when there is none.
    std::optional<std::string> companionAppURL() const;
    /// Where the companion writes; nothing without a group container.
    std::optional<std::string> watchBatteryFileURL() const;
    /// Takes the file's content, a JSON object of objects of at most 1 MiB; any other leaves the last one in place and
    /// is false.
    bool readWatchBatteryFile();

private:
    explicit OrvBluetoothAppleWatch(const Platform& platform);
    void beginUpdate() override;

    const Platform& platform;
};

} // namespace orv
