#pragma once

#include "platform/Bundle.h"
#include "readings/Readings.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orv {

/// The application group shared with the menu-bar application; a value of the build.
inline constexpr const char* applicationGroupIdentifier = ORV_APPLICATION_GROUP;

/// Where in the application group's container the companion writes.
inline constexpr const char* watchFileInContainer = "/Library/Application Support/applewatchbt.json";

/// Whether the watch file could be read, or the first thing that was in the way.
enum class WatchFileOutcome : std::uint8_t { read, noContainer, noFile, notJSON, notObjects };

/// The watch file, as far as it could be read.
struct WatchFile {
    WatchFileOutcome outcome = WatchFileOutcome::noContainer;
    std::string path; // empty without a container
    std::string bytes;
    std::optional<std::size_t> faultPosition; // where it stops being JSON, if the reader can tell
    Value content; // when it is JSON
    std::string member; // the first that is no object; empty when the whole is none
    BluetoothBatteryDictionary entries; // when it was read: the companion's keys to its objects, unchanged
};

/// The first application in the program's own resources; nothing when there is none.
std::optional<std::string> companionApplication(const Bundle& bundle);

/// Where the companion writes; nothing without a group container.
std::optional<std::string> watchFilePath(const Bundle& bundle);

/// Reads the file as it stands: a JSON object of objects, of at most 1 MiB.
WatchFile readWatchFile(const Bundle& bundle);

} // namespace orv
