#pragma once

#include "platform/HIDEventSystem.h"
#include "smc/SMC.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orv {

/// What an SMC gave when a key was read.
struct ReadKey {
    SMCVal val;
    bool fails = false;
};

/// The SMC as collections use it, keeping what the first read of each key gave.
class FirstReads final : public SMC {
public:
    kern_return_t read(SMCVal& val) override;

    /// All keys of the SMC, in its order, once the key list was asked for.
    std::vector<std::string> names;
    std::map<std::string, ReadKey, std::less<>> keys;

protected:
    std::vector<std::string> readKeyNames() override;
};

/// What a collection took of a HID service, in the services' order.
struct ReadService {
    Value locationID;
    bool isAsked = false; // for its event
    std::optional<double> degrees; // nothing: it has no event
};

/// The HID event system as collections use it, keeping what its services gave.
class ServiceReads final : public HIDEventSystem {
public:
    explicit ServiceReads(HIDEventSystem& behind)
        : system(behind)
    {
    }

    bool forEachService(std::int32_t page, std::int32_t usage, const std::function<void(HIDService&)>& visit) override;

    std::vector<ReadService> services;

private:
    HIDEventSystem& system;
};

} // namespace orv
