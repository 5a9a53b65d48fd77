#include "linux/bus/BusSource.h"

#include <poll.h>
#include <time.h>

#include <utility>

namespace orv {

namespace {

int ignoreEmptyTrack(sd_bus_track*, void*)
{
    return 0;
}

} // namespace

int BusSource::attach(sd_bus* connection, sd_event* event, OnStep onStep)
{
    bus = connection;
    told = std::move(onStep);
    const int file = sd_bus_get_fd(bus);
    if (file < 0)
        return file;
    if (const int result = sd_event_add_io(event, input.out(), file, 0, ready, this); result < 0)
        return result;
    if (const int result = sd_event_add_time(event, timer.out(), CLOCK_MONOTONIC, 0, 1, timeReached, this); result < 0)
        return result;
    return sd_event_source_set_prepare(input.get(), prepare);
}

void BusSource::detach()
{
    input.reset();
    timer.reset();
}

int BusSource::prepare(sd_event_source*, void* source)
{
    return static_cast<BusSource*>(source)->listen();
}

int BusSource::ready(sd_event_source*, int, std::uint32_t, void* source)
{
    return static_cast<BusSource*>(source)->step();
}

int BusSource::timeReached(sd_event_source*, std::uint64_t, void* source)
{
    return static_cast<BusSource*>(source)->step();
}

// What the loop waits for from here to the next step.
int BusSource::listen() const
{
    const bool mustWait = mustWaitForRoom();
    const int events = mustWait ? POLLOUT : sd_bus_get_events(bus);
    std::uint64_t deadline = UINT64_MAX;
    if (const int result = mustWait ? 0 : sd_bus_get_timeout(bus, &deadline); events < 0 || result < 0) {
        sd_event_source_set_enabled(timer.get(), SD_EVENT_OFF);
        return sd_event_source_set_enabled(input.get(), SD_EVENT_OFF); // closed
    }
    sd_event_source_set_io_events(input.get(), static_cast<std::uint32_t>(events));
    sd_event_source_set_time(timer.get(), deadline);
    return sd_event_source_set_enabled(timer.get(), deadline == UINT64_MAX ? SD_EVENT_OFF : SD_EVENT_ONESHOT);
}

int BusSource::step()
{
    const int result = mustWaitForRoom() ? send() : sd_bus_process(bus, nullptr);
    told(result);
    return result < 0 ? result : 0; // at an error the loop lets go of the source
}

bool BusSource::mustWaitForRoom() const
{
    std::uint64_t waiting = 0;
    return sd_bus_is_ready(bus) > 0 && sd_bus_get_n_queued_write(bus, &waiting) >= 0 && waiting > 0;
}

// The library sends without reading only in sd_bus_flush, which waits, and in a step that has something else to do
// before it reads: here to tell that nobody is tracked. (Should a release of it tell that at another time, each part
// of a reply that is taken reads one call.)
int BusSource::send() const
{
    sd_bus_track* nobody = nullptr;
    sd_bus_track_new(bus, &nobody, ignoreEmptyTrack, nullptr);
    const int result = sd_bus_process(bus, nullptr);
    sd_bus_track_unref(nobody);
    return result;
}

} // namespace orv
