// The floor of a service: two threads, each in an event loop, one of them on the session bus. With a name it claims
// that name and answers "Nothing" of the interface org.orv.Empty at "/".

#include <systemd/sd-bus.h>
#include <systemd/sd-event.h>

#include <thread>

namespace {

int answerNothing(sd_bus_message* call, void*, sd_bus_error*)
{
    return sd_bus_reply_method_return(call, nullptr);
}

const sd_bus_vtable methods[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Nothing", "", "", answerNothing, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

void serve(const char* name)
{
    sd_event* loop = nullptr;
    sd_bus* bus = nullptr;
    const bool isReady = sd_event_new(&loop) >= 0 && sd_bus_open_user(&bus) >= 0
        && sd_bus_add_object_vtable(bus, nullptr, "/", "org.orv.Empty", methods, nullptr) >= 0
        && sd_bus_attach_event(bus, loop, SD_EVENT_PRIORITY_NORMAL) >= 0
        && (!name || sd_bus_request_name(bus, name, 0) >= 0);
    if (isReady)
        sd_event_loop(loop);
}

} // namespace

int main(int argumentCount, char** arguments)
{
    std::thread bus([&] { serve(argumentCount > 1 ? arguments[1] : nullptr); });
    sd_event* loop = nullptr;
    if (sd_event_new(&loop) >= 0)
        sd_event_loop(loop);
    bus.join();
    return 0;
}
