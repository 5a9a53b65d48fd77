#pragma once

#include "readings/Value.h"
#include "service/OrvSMCHelperServer.h"
#include "simulated/RecordedMac.h"
#include "smc/SMC.h"
#include "thermal/OrvTemperatureFans.h"

#include <memory>
#include <optional>

namespace orv {

/// All of the service except its bus, for a recorded Mac. Main thread only.
class RecordedServer {
public:
    /// Refreshes once. The observer, which outlives this, is told of that refresh too.
    RecordedServer(RecordedMac& mac, RefreshObserver& observer);
    /// Ends the cycles under way, which keep their objects alive.
    ~RecordedServer();
    RecordedServer(const RecordedServer&) = delete;
    RecordedServer& operator=(const RecordedServer&) = delete;

    /// The replies to the two requests, of the last refresh.
    Value thermalReply() const;
    Value bluetoothReply() const;

private:
    ReadingSources sources();

    RecordedMac& mac;
    SMC smc;
    const OrvTemperatureFans profile;
    std::shared_ptr<OrvBluetoothSysProfile> systemProfile;
    std::shared_ptr<OrvBluetoothAppleWatch> watch;
    std::optional<OrvSMCHelperServer> server;
};

} // namespace orv
