#include "linux/bus/BusHandles.h"
#include "linux/bus/BusMessageReader.h"
#include "linux/bus/BusNames.h"
#include "service/Client.h"

#include <systemd/sd-bus.h>

#include <cstdint>
#include <cstring>
#include <utility>

namespace orv {

namespace {

constexpr std::uint64_t patience = 10'000'000; // microseconds
constexpr const char* bundleIdentifier = ORV_BUNDLE_IDENTIFIER;

ServiceAnswer failure(const char* reason)
{
    return {std::nullopt, std::string("the service ") + bundleIdentifier + " cannot be asked: " + reason};
}

} // namespace

ServiceAnswer askService(Request request)
{
    BusConnection bus;
    if (const int result = sd_bus_open_user(bus.out()); result < 0)
        return failure(std::strerror(-result));
    sd_bus_set_method_call_timeout(bus.get(), patience);
    const auto path = objectPath(bundleIdentifier);
    BusMessage reply;
    sd_bus_error error{};
    const int result = sd_bus_call_method(
        bus.get(), bundleIdentifier, path.c_str(), requestInterface, methodOf(request), &error, reply.out(), nullptr);
    if (result < 0) {
        const auto answer = failure(error.message ? error.message : std::strerror(-result));
        sd_bus_error_free(&error);
        return answer;
    }
    auto value = readBusValue(reply.get());
    return value && value->as<Dictionary>() ? ServiceAnswer{std::move(value), {}} : failure("its reply cannot be read");
}

} // namespace orv
