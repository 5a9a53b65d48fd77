#pragma once

#include "platform/Platform.h"
#include "readings/Readings.h"
#include "refresh/RefreshingSource.h"
#include "service/Published.h"

#include <functional>

namespace orv {

class OrvBluetoothAppleWatch;
class OrvBluetoothSysProfile;
class OrvTemperatureFans;
class SMC;

/// Where a refresh gets its readings. Each is asked for inside the first refresh, which so creates it.
struct ReadingSources {
    std::function<SMC&()> smc;
    std::function<const OrvTemperatureFans&()> profile;
    std::function<OrvBluetoothSysProfile&()> systemProfile;
    std::function<OrvBluetoothAppleWatch&()> watch;
};

/// The cache between the collectors and the requests: refreshed every 5 seconds and on wake. The two readings may be
/// taken on any thread; everything else belongs to the main thread.
class OrvSMCHelperServer final : public RefreshingSource {
public:
    static constexpr Seconds reloadInterval{5.0};

    /// Refreshes once before it returns.
    OrvSMCHelperServer(const Platform& platform, ReadingSources sources);

    /// The server of this process, on the shared platform and with the shared sources.
    static OrvSMCHelperServer& shared();

    Published<ThermalDictionary> smcData;
    Published<BluetoothBatteryDictionary> btData;

private:
    void beginUpdate() override;

    HIDEventSystem& hidEventSystem;
    ReadingSources sources;
};

} // namespace orv
