#include "service/OrvSMCHelperServer.h"

#include "bluetooth/BluetoothReadings.h"
#include "bluetooth/OrvBluetoothAppleWatch.h"
#include "bluetooth/OrvBluetoothSysProfile.h"
#include "smc/SMC.h"
#include "thermal/Collection.h"
#include "thermal/OrvTemperatureFans.h"

#include <utility>

namespace orv {

OrvSMCHelperServer::OrvSMCHelperServer(const Platform& platform, ReadingSources readingSources)
    : RefreshingSource(platform, Refreshed::readings)
    , hidEventSystem(platform.hidEventSystem)
    , sources(std::move(readingSources))
{
    start(reloadInterval);
}

OrvSMCHelperServer& OrvSMCHelperServer::shared()
{
    static auto& server = *new OrvSMCHelperServer(sharedPlatform(),
        {sharedSMC, OrvTemperatureFans::shared, OrvBluetoothSysProfile::shared, OrvBluetoothAppleWatch::shared});
    return server;
}

void OrvSMCHelperServer::beginUpdate()
{
    smcData.replace(Orv_SMCHelper::collectThermalReadings(sources.profile(), sources.smc(), hidEventSystem));
    auto systemProfile = sources.systemProfile().systemBlueToothDictionary;
    auto watch = sources.watch().systemBlueToothDictionary;
    btData.replace(bluetoothReadings(std::move(systemProfile), std::move(watch)));
    finishUpdate();
}

} // namespace orv
