#include "orvctl/collecting/OpenSimulatedMac.h"

#include <fmt/core.h>

#include <cstdio>

namespace orv {

std::unique_ptr<RecordedMac> openSimulatedMac(const SimulatedMoment& moment, std::string& fault)
{
    auto mac = RecordedMac::open(*moment.path, fault, moment.at);
    if (!mac)
        return nullptr;
    if (!mac->recording.notice().empty())
        std::fprintf(stderr, "orvctl: %s\n", mac->recording.notice().c_str());
    if (moment.at > mac->recording.length()) {
        fault = beyondTheEnd(*moment.path, mac->recording.length());
        return nullptr;
    }
    return mac;
}

std::string beyondTheEnd(const std::string& path, double length)
{
    if (length == 0)
        return path + ": holds one moment; \"orvctl record --for\" makes files of more";
    return fmt::format("{}: ends {} seconds after its beginning", path, length);
}

} // namespace orv
