#include "explain/ThisMac.h"
#include "recording/ThisMac.h"
#include "service/Client.h"
#include "service/Watching.h"

namespace orv {

namespace {

constexpr const char* refusal = "only a machine file can be asked here (--simulate FILE)";

} // namespace

// The program that is linked with the simulated calls knows no service: orvctl itself asks that.
ServiceAnswer askService(Request)
{
    return {std::nullopt, refusal};
}

std::vector<ServiceAnswer> askServiceForAll()
{
    return std::vector<ServiceAnswer>(requests.size(), {std::nullopt, refusal});
}

std::string watchService(ServiceWatcher&, int)
{
    return refusal;
}

InspectionAnswer inspectThisMac(const std::vector<std::string>&)
{
    return {std::nullopt, refusal};
}

std::string modelOfThisMac()
{
    return {};
}

std::string recordThisMac(const std::function<void(const std::string& text)>&, const RecordingPlan&)
{
    return {};
}

} // namespace orv
