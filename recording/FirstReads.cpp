#include "recording/FirstReads.h"

namespace orv {

namespace {

class KeptService final : public HIDService {
public:
    KeptService(HIDService& behind, ReadService& keptReads)
        : service(behind)
        , kept(keptReads)
    {
    }

    Value locationID() override
    {
        kept.locationID = service.locationID();
        return kept.locationID;
    }

    std::optional<double> eventValue(std::int32_t eventType, std::int32_t field) override
    {
        kept.isAsked = true;
        kept.degrees = service.eventValue(eventType, field);
        return kept.degrees;
    }

private:
    HIDService& service;
    ReadService& kept;
};

} // namespace

kern_return_t FirstReads::read(SMCVal& val)
{
    const auto status = SMC::read(val);
    keys.try_emplace(val.key, ReadKey{val, status != KERN_SUCCESS});
    return status;
}

std::vector<std::string> FirstReads::readKeyNames()
{
    names = SMC::readKeyNames();
    return names;
}

bool ServiceReads::forEachService(std::int32_t page, std::int32_t usage, const std::function<void(HIDService&)>& visit)
{
    services.clear();
    return system.forEachService(page, usage, [&](HIDService& service) {
        KeptService kept(service, services.emplace_back());
        visit(kept);
    });
}

} // namespace orv
