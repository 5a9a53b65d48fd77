#include "linux/HostObstacles.h"

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <string>

namespace orv {

namespace {

constexpr const char* smcGroup = "orv-smc";
constexpr const char* giveGroup = "sudo udevadm trigger --action=add --subsystem-match=hwmon";

enum class Membership { noGroup, none, notYet, member };

bool isListed(const group& entry)
{
    const auto* user = getpwuid(getuid());
    for (auto** name = entry.gr_mem; user && *name; ++name) {
        if (std::string(*name) == user->pw_name)
            return true;
    }
    return false;
}

// A membership counts from the start of the session on.
Membership membership()
{
    const auto* entry = getgrnam(smcGroup);
    if (!entry)
        return Membership::noGroup;
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(0, getgroups(0, nullptr))));
    const int count = getgroups(static_cast<int>(groups.size()), groups.data());
    groups.resize(static_cast<std::size_t>(std::max(0, count)));
    if (getegid() == entry->gr_gid || std::ranges::find(groups, entry->gr_gid) != groups.end())
        return Membership::member;
    return isListed(*entry) ? Membership::notYet : Membership::none;
}

Obstacle missingPermission()
{
    const std::string effect =
        "The driver shows only sensors of one kind, to a quarter of a degree: every key of the SMC is "
        "for members of the group orv-smc, ";
    switch (membership()) {
    case Membership::noGroup:
        return {"no-group", effect + "which does not exist.",
            std::string("sudo systemd-sysusers && sudo adduser $USER orv-smc && ").append(giveGroup)};
    case Membership::none:
        return {
            "no-member", effect + "and you are none. It counts from the next login on.", "sudo adduser $USER orv-smc"};
    case Membership::notYet:
        return {"member-later", effect + "which counts from the next login on.", "sudo loginctl terminate-user $USER"};
    case Membership::member:
        break;
    }
    return {"no-group-access", effect + "but the driver's file has not been given to it.", giveGroup};
}

Obstacle noDriver(const std::string& processor)
{
    const bool isAppleSilicon = processor.starts_with("Apple");
    return {"no-driver", "No kernel driver shows an SMC: this computer is no Mac, or its driver is not loaded.",
        isAppleSilicon ? "sudo modprobe macsmc_hwmon" : "sudo modprobe applesmc"};
}

} // namespace

std::vector<Obstacle> hostObstacles(HostHardware& hardware)
{
    const auto access = hardware.smcAccess();
    if (access == SMCAccess::none)
        return {noDriver(hardware.systemValue("machdep.cpu.brand_string").value_or(""))};
    if (access == SMCAccess::refused)
        return {missingPermission()};
    if (access == SMCAccess::files)
        return {
            {"files-only", "The kernel's driver gives only files of some sensors and fans, not the SMC's keys.", ""}};
    return {};
}

} // namespace orv
