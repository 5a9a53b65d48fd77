#include "linux/LoginWorkspace.h"

#include "linux/SpawnLauncher.h"
#include "platform/RunLoop.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace orv {

namespace {

constexpr const char* loginService = "org.freedesktop.login1";
constexpr const char* loginPath = "/org/freedesktop/login1";
constexpr const char* loginManager = "org.freedesktop.login1.Manager";

// Far above what passes between reading two clocks, far below any real sleep.
constexpr std::chrono::seconds shortestSleep{1};

std::string executable(const std::string& application)
{
    const std::filesystem::path path(application);
    std::error_code error;
    return std::filesystem::is_directory(path, error) ? (path / path.stem()).string() : application;
}

} // namespace

LoginWorkspace::LoginWorkspace(
    RunLoop& givenRunLoop, SpawnLauncher& spawnLauncher, SystemBus& systemBus, Clock givenClock)
    : runLoop(givenRunLoop)
    , launcher(spawnLauncher)
    , clock(std::move(givenClock))
    , knownTimeAsleep(clock())
    , runningApplications(std::make_shared<RunningApplications>())
{
    systemBus.watch([this](sd_bus* connection) { addMatches(connection); }, [this] { announcerVanished(); });
}

void LoginWorkspace::openApplication(const std::string& path)
{
    auto entry = enter(path);
    if (!entry)
        return;
    runLoop.postToBackground(
        [path, entry = std::move(entry), &programs = launcher] { programs.run(executable(path)); });
}

// An entry that lasts as long as what is returned, on whatever thread that ends: work that is dropped for want of a
// thread must not count as running for ever. Nothing when there is one already.
std::shared_ptr<LoginWorkspace::RunningApplications> LoginWorkspace::enter(const std::string& path) const
{
    const std::lock_guard lock(runningApplications->mutex);
    if (!runningApplications->paths.insert(path).second)
        return nullptr;
    return {runningApplications.get(), [path, owner = runningApplications](RunningApplications* running) {
                const std::lock_guard ending(running->mutex);
                running->paths.erase(path);
            }};
}

void LoginWorkspace::prepareForSleep(bool isStarting)
{
    const bool wasCounted = std::exchange(isWakeCounted, false) && !hasSleptUnnoticed();
    isSleepAnnounced = isStarting;
    if (isStarting)
        return observers.willSleep();
    knownTimeAsleep = clock();
    if (!wasCounted)
        observers.didWake();
}

void LoginWorkspace::announcerVanished()
{
    if (std::exchange(isSleepAnnounced, false))
        observers.didWake();
}

void LoginWorkspace::checkClocks()
{
    if (!hasSleptUnnoticed())
        return;
    knownTimeAsleep = clock();
    isSleepAnnounced = false;
    isWakeCounted = true;
    observers.didWake();
}

bool LoginWorkspace::hasSleptUnnoticed() const
{
    return clock() - knownTimeAsleep >= shortestSleep;
}

int LoginWorkspace::prepareForSleepArrived(sd_bus_message* signal, void* workspace, sd_bus_error*)
{
    int isStarting = 0;
    if (sd_bus_message_read(signal, "b", &isStarting) > 0)
        static_cast<LoginWorkspace*>(workspace)->prepareForSleep(isStarting != 0);
    return 0;
}

int LoginWorkspace::loginOwnerChanged(sd_bus_message*, void* workspace, sd_bus_error*)
{
    static_cast<LoginWorkspace*>(workspace)->announcerVanished();
    return 0;
}

// Without memory for a match the clocks tell of a wake.
void LoginWorkspace::addMatches(sd_bus* connection)
{
    (void)sd_bus_match_signal_async(connection, nullptr, loginService, loginPath, loginManager, "PrepareForSleep",
        prepareForSleepArrived, nullptr, this);
    (void)sd_bus_add_match_async(
        connection, nullptr, ownerChanges(loginService).c_str(), loginOwnerChanged, nullptr, this);
}

} // namespace orv
