#pragma once

#include "platform/Platform.h"
#include "recording/FirstReads.h"
#include "recording/RecordedMoment.h"
#include "recording/RecordingText.h"
#include "recording/ReportTap.h"
#include "recording/StandIns.h"
#include "recording/WatchLooks.h"
#include "refresh/RefreshingSource.h"
#include "thermal/OrvTemperatureFans.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orv {

class OrvBluetoothSysProfile;

/// Where a recording goes, and what time it is there.
struct RecordingTarget {
    /// Takes the first object or whole lines.
    std::function<void(const std::string& text)> write;
    /// Seconds since the recording's beginning, time asleep included.
    std::function<double()> now;
    /// The type of a key whose first read fails, where it is known all the same; later readings need it.
    std::function<std::string(const std::string& key)> typeOfFailingKey = nullptr;
};

/// Records a machine: at its start, at an interval and on wake, never while the computer sleeps. Sensors are collected
/// as the service collects them, the profiler runs when the service would run it, and the companion never does; its
/// file is read as it stands, then and when the service would read it. Main thread only.
class Recorder final : public RefreshingSource {
public:
    Recorder(const Platform& platform, RecordingTarget target);
    ~Recorder() override;

    /// Takes the first moment; the first object is written when the profiler's first report is there.
    void begin(Seconds interval);
    /// Takes a last moment, unless the computer sleeps, and writes what is left and how long it was.
    void end();

    /// Whether the first object was written and no report is waited for.
    bool isSettled() const { return isBegun && !tap.isRunning(); }

    /// What of the machine was kept, and what not.
    std::string summary() const;

private:
    struct Line {
        double at;
        std::string text;
    };
    class Notes;

    void beginUpdate() override;
    void takeMoment();
    void lookAtWatchFile();
    void nameFailingTypes();
    void readWhatCollectionsLeaveOut();
    std::optional<Value> watchFile();
    void happened(const char* event);
    void reportArrived(double startedAt, const std::string& report);
    void add(std::vector<Member> members);
    void writeHeld();

    const Platform& platform;
    const RecordingTarget target;
    const OrvTemperatureFans profile;
    FirstReads smc;
    ServiceReads services;
    StandIns standIns;

    std::unique_ptr<Notes> notes;
    ReportTap tap;
    Platform tappedPlatform; // with the tap for a launcher
    std::shared_ptr<OrvBluetoothSysProfile> monitor;
    std::shared_ptr<WatchLooks> looks;

    RecordedMoment first; // with every key
    RecordedMoment latest; // with the keys that collections can use
    double momentAt = 0;
    bool hasFirst = false;
    bool isWaking = false;

    Value report = std::string(); // the last one, or the text of none
    bool isBegun = false; // the first object is written
    std::vector<Line> held; // until the report under way arrives, whose place is before them
    double lastAt = 0; // of what was written
    std::size_t steps = 0;
};

} // namespace orv
