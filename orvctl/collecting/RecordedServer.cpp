#include "orvctl/collecting/RecordedServer.h"

#include "bluetooth/OrvBluetoothAppleWatch.h"
#include "bluetooth/OrvBluetoothSysProfile.h"
#include "service/Replies.h"
#include "service/ValueSink.h"

namespace orv {

namespace {

template <typename Source> Source& created(std::shared_ptr<Source>& source, const Platform& platform)
{
    if (!source)
        source = Source::create(platform);
    return *source;
}

template <typename WriteReply> Value reply(WriteReply writeReply)
{
    ValueSink sink;
    writeReply(sink);
    return sink.take();
}

} // namespace

RecordedServer::RecordedServer(RecordedMac& recorded, RefreshObserver& observer)
    : mac(recorded)
{
    mac.simulation.platform.refreshObserver = &observer;
    server.emplace(mac.simulation.platform, sources());
}

RecordedServer::~RecordedServer()
{
    server.reset();
    systemProfile.reset();
    watch.reset();
    mac.runLoop.advance(OrvSMCHelperServer::reloadInterval);
}

Value RecordedServer::thermalReply() const
{
    return reply([this](ReplySink& sink) { writeThermalReply(*server->smcData.take(), sink); });
}

Value RecordedServer::bluetoothReply() const
{
    return reply([this](ReplySink& sink) { writeBluetoothReply(*server->btData.take(), sink, propertyListLimits); });
}

ReadingSources RecordedServer::sources()
{
    const auto& platform = mac.simulation.platform;
    return {[this]() -> SMC& { return smc; }, [this]() -> const OrvTemperatureFans& { return profile; },
        [this, &platform]() -> OrvBluetoothSysProfile& { return created(systemProfile, platform); },
        [this, &platform]() -> OrvBluetoothAppleWatch& { return created(watch, platform); }};
}

} // namespace orv
