#pragma once

#include "bluetooth/BluetoothReportObserver.h"
#include "explain/Change.h"
#include "explain/Inspection.h"
#include "explain/Verdict.h"
#include "thermal/Collection.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orv {

/// Something about the computer that keeps readings away, and what mends it.
struct Obstacle {
    std::string identifier{}; // in documents
    std::string text{};
    std::string command{}; // empty when none helps
};

/// What holds for the machine as a whole.
struct MachineFacts {
    std::string model{};
    std::string processor{};
    Orv_SMCHelper::CollectionWay way = Orv_SMCHelper::CollectionWay::intel;
    std::string reason{}; // for this way
    std::int64_t efficiencyCores = 0;
    std::int64_t performanceCores = 0;
    bool isSMCOpen = false;
    std::optional<double> smcKeys{}; // in all, as "#KEY" counts them
    std::size_t listedTemperatures = 0; // keys that begin with "T"
    std::size_t listedFans = 0; // keys that begin with "F"
    bool isHIDAsked = false;
    std::size_t services = 0;
    bool isProfilerRun = false;
    ReportOutcome report = ReportOutcome::notJSON;
    std::vector<Obstacle> obstacles{};
};

enum class SensorSource : std::uint8_t { smc, hid, catalogue };

/// A listed SMC key that begins with "T" or "F", a HID service, or a row of the catalogue that nothing on this machine
/// stands for.
struct SensorRow {
    SensorSource source = SensorSource::smc;
    std::string key{}; // empty for a service without a usable location
    std::optional<std::size_t> service{}; // its place
    std::optional<SMCVal> val{}; // of an SMC key, as far as it could be read
    bool hasBytes = false;
    Value value{}; // as the reply has it when it is shown, otherwise what it reads; null for no number
    Value reading{}; // its own number, when the reply has another one
    Verdict verdict = Verdict::shown;
    std::string title{};
    std::string rival{}; // the key that has its title
    std::optional<std::size_t> rivalService{};
    std::string from{}; // the key whose reading stands in
    std::optional<FanEntry> fan{};
    ReadSpeeds readSpeeds{}; // of the fan
    const SensorTable* table = nullptr; // of a row of the catalogue
    std::optional<Change> change{}; // nothing for what is shown, and where no change helps
};

/// A device, or an element of the Bluetooth report.
struct DeviceRow {
    std::string key{}; // empty without an address
    std::string name{};
    std::string address{};
    std::string form{}; // what the report says it is, for example "Mouse"
    std::size_t part = 0; // of the report's data types
    std::string list{}; // the member of the report that lists it
    std::size_t element = 0; // its place there
    Verdict verdict = Verdict::shown;
    std::string member{}; // the property that is no text
    std::optional<std::size_t> rival{}; // the element that spoils the list or has the same address
    Dictionary levels{}; // also of one that is not connected
    std::optional<Change> change{};
};

/// An entry of the watch file; a null in one; or the one thing that keeps all of them away.
struct WatchRow {
    std::string key{}; // empty when there are no entries
    std::string member{}; // where the null is; the member that is no object
    Verdict verdict = Verdict::shown;
    Value content{};
    std::string detail{}; // where the file is, where it is not JSON
    std::optional<Change> change{};
};

struct Explanation {
    MachineFacts machine;
    std::vector<SensorRow> sensors; // listed keys, services, rows of the catalogue, each in its order
    std::vector<DeviceRow> bluetooth;
    std::vector<WatchRow> watch;
};

enum class Changes : std::uint8_t { leftOut, found };

/// Explains an inspection, which must outlive nothing of the result. Without changes it is quicker.
Explanation explain(const Inspection& inspection, Changes changes = Changes::found);

} // namespace orv
