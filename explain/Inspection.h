#pragma once

#include "bluetooth/WatchFile.h"
#include "explain/CollectionLog.h"
#include "platform/HIDEventSystem.h"
#include "platform/ProcessLauncher.h"
#include "readings/Readings.h"
#include "smc/SMC.h"
#include "thermal/OrvTemperatureFans.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orv {

/// One read of an SMC key. A failing one may have got as far as the key's size and type.
struct SMCRead {
    kern_return_t status = KERN_SUCCESS;
    SMCVal val;
};

/// What the reads of a key gave, in their order.
using SMCReads = std::map<std::string, std::vector<SMCRead>, std::less<>>;

/// What a HID service answered.
struct HIDRead {
    Value locationID;
    std::optional<double> degrees; // nothing without an event; it is not asked of a service without a usable location
};

/// Everything that one collection on a machine was given, as it came, and what was made of it.
struct Inspection {
    OrvTemperatureFans profile;
    std::string processorName;

    bool isSMCOpen = false;
    std::vector<std::string> keys; // that the SMC lists and that begin with "T" or "F"; in its order, each once
    SMCReads reads; // of the collection: the listed keys that it looks at, "#KEY", and the others that it asks for
    SMCReads laterReads; // of the other listed keys and of wanted ones, read once after the collection
    std::vector<HIDRead> services; // empty when the collection does not ask HID
    ThermalDictionary thermal;
    CollectionLog log;

    std::optional<std::string> report; // what the profiler printed; nothing when it cannot be started
    BluetoothBatteryDictionary devices; // of the report
    std::optional<std::string> companion;
    WatchFile watch; // as it stands
    BluetoothBatteryDictionary bluetooth; // of devices and watches
};

/// What a machine is inspected through, beside the IOKit and sysctl calls.
struct InspectedPlatform {
    HIDEventSystem& hidEventSystem;
    ProcessLauncher& processLauncher;
    const Bundle& bundle;
};

/// Collects once from this machine, with the code that the service runs. Starts the profiler and waits for it; opens no
/// companion. Besides the listed keys it reads `wantedKeys`, those of four ASCII characters, into `laterReads`.
Inspection inspect(const InspectedPlatform& platform, const std::vector<std::string>& wantedKeys = {});

} // namespace orv
