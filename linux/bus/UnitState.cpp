#include "linux/bus/UnitState.h"

#include "linux/bus/BusHandles.h"
#include "linux/bus/BusMessageReader.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace orv {

namespace {

constexpr std::uint64_t patience = 500'000; // microseconds
constexpr const char* systemd = "org.freedesktop.systemd1";

/// What systemd ends a process with that it cannot set up (systemd.exec(5)).
struct SetUpStatus {
    std::int64_t status;
    std::string_view name;
    bool needsNamespace;
};

constexpr std::array<SetUpStatus, 5> setUpStatuses{{
    {203, "EXEC", false},
    {217, "USER", true},
    {218, "CAPABILITIES", true},
    {225, "NETWORK", true},
    {226, "NAMESPACE", true},
}};

const SetUpStatus* setUpStatus(std::int64_t status)
{
    const auto found = std::ranges::find(setUpStatuses, status, &SetUpStatus::status);
    return found == setUpStatuses.end() ? nullptr : &*found;
}

std::string unitPath(const char* unit)
{
    char* path = nullptr;
    if (sd_bus_path_encode("/org/freedesktop/systemd1/unit", unit, &path) < 0)
        return {};
    const std::unique_ptr<char, decltype(&std::free)> owner(path, std::free);
    return path;
}

std::optional<Dictionary> properties(sd_bus* bus, const std::string& path, const char* interface)
{
    BusMessage call;
    BusMessage reply;
    const bool isAnswered = sd_bus_message_new_method_call(
                                bus, call.out(), systemd, path.c_str(), "org.freedesktop.DBus.Properties", "GetAll")
            >= 0
        && sd_bus_message_append(call.get(), "s", interface) >= 0 && sd_bus_message_set_auto_start(call.get(), 0) >= 0
        && sd_bus_call(bus, call.get(), patience, nullptr, reply.out()) >= 0;
    return isAnswered ? std::optional(readBusDictionary(reply.get())) : std::nullopt;
}

std::string textOf(const Dictionary& dictionary, const char* key)
{
    const auto* text = dictionary.findAs<std::string>(key);
    return text ? *text : std::string();
}

} // namespace

bool UnitState::lacksNamespace() const
{
    const auto* known = setUpStatus(status);
    return known && known->needsNamespace;
}

std::string UnitState::text() const
{
    const auto* known = setUpStatus(status);
    return "failed (" + result + ", status " + std::to_string(status)
        + (known ? '/' + std::string(known->name) : std::string()) + ')';
}

std::optional<UnitState> unitState(sd_bus* bus, const char* unit)
{
    const auto path = unitPath(unit);
    const auto general = properties(bus, path, "org.freedesktop.systemd1.Unit");
    const auto service = general ? properties(bus, path, "org.freedesktop.systemd1.Service") : std::nullopt;
    if (!service)
        return std::nullopt;
    const auto* status = service->findAs<std::int64_t>("ExecMainStatus");
    return UnitState{textOf(*general, "ActiveState"), textOf(*general, "SubState"), textOf(*service, "Result"),
        status ? *status : 0};
}

} // namespace orv
