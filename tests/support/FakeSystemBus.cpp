#include "tests/support/FakeSystemBus.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <string>

namespace orv {

namespace {

constexpr const char* daemon = "org.freedesktop.DBus";

std::string socketName()
{
    return "orv-fake-system-bus-" + std::to_string(getpid());
}

} // namespace

FakeSystemBus::FakeSystemBus()
{
    setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:abstract=" + socketName()).c_str(), 1);
    listen();
}

FakeSystemBus::~FakeSystemBus()
{
    disconnect();
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}

void FakeSystemBus::listen()
{
    if (listener)
        return;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const auto name = socketName();
    std::ranges::copy(name, address.sun_path + 1); // after a NUL, a name that is no file
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    listener = FileDescriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), size) != 0
        || ::listen(listener.get(), SOMAXCONN) != 0)
        std::abort();
}

void FakeSystemBus::disconnect()
{
    calls.clear();
    connection.reset();
}

bool FakeSystemBus::process()
{
    bool hasDone = accept();
    while (connection) {
        const int result = sd_bus_process(connection.get(), nullptr);
        if (result == 0)
            break;
        if (result < 0)
            disconnect();
        hasDone = true;
    }
    return hasDone;
}

void FakeSystemBus::answer()
{
    if (calls.empty())
        return;
    const bool isGreeting = sd_bus_message_is_method_call(calls.front().get(), daemon, "Hello") > 0;
    const auto reply = newAnswer();
    if (isGreeting)
        sd_bus_message_append(reply.get(), "s", ":1.1");
    send(reply);
}

void FakeSystemBus::answerWithError()
{
    if (calls.empty())
        return;
    BusMessage reply;
    sd_bus_message_new_method_errorf(
        calls.front().get(), reply.out(), "org.freedesktop.DBus.Error.AccessDenied", "not for you");
    sd_bus_message_set_sender(reply.get(), daemon);
    send(reply);
}

BusMessage FakeSystemBus::newSignal(const char* sender, const char* path, const char* interface, const char* member)
{
    BusMessage signal;
    if (connection && sd_bus_message_new_signal(connection.get(), signal.out(), path, interface, member) >= 0)
        sd_bus_message_set_sender(signal.get(), sender);
    return signal;
}

BusMessage FakeSystemBus::newAnswer()
{
    BusMessage reply;
    if (calls.empty())
        return reply;
    sd_bus_message_new_method_return(calls.front().get(), reply.out());
    sd_bus_message_set_sender(reply.get(), daemon);
    return reply;
}

void FakeSystemBus::send(const BusMessage& message)
{
    if (message && sd_bus_send(nullptr, message.get(), nullptr) >= 0
        && sd_bus_message_is_signal(message.get(), nullptr, nullptr) == 0)
        calls.pop_front();
}

int FakeSystemBus::arrived(sd_bus_message* message, void* systemBus, sd_bus_error*)
{
    if (sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0)
        return 0;
    static_cast<FakeSystemBus*>(systemBus)->calls.emplace_back(sd_bus_message_ref(message));
    return 1;
}

bool FakeSystemBus::accept()
{
    const int end = listener ? accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK) : -1;
    if (end < 0)
        return false;
    disconnect();
    constexpr sd_id128_t identifier{.bytes = {1}};
    const bool isServed = sd_bus_new(connection.out()) >= 0 && sd_bus_set_fd(connection.get(), end, end) >= 0
        && sd_bus_set_server(connection.get(), 1, identifier) >= 0
        && sd_bus_add_filter(connection.get(), nullptr, arrived, this) >= 0 && sd_bus_start(connection.get()) >= 0;
    if (!isServed)
        std::abort();
    return true;
}

} // namespace orv
