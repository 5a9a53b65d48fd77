#include "linux/bus/BusSource.h"

#include "linux/bus/BusHandles.h"

#include <gtest/gtest.h>

#include <sys/socket.h>

#include <array>
#include <string>

using namespace orv;

namespace {

/// A service that answers every call with much text, and a bus that calls it, on two ends of a small socket.
struct Peers : testing::Test {
    static constexpr int smallSocket = 4096; // bytes
    const std::string longText = std::string(200'000, 'x');

    Event event;
    BusConnection service;
    BusConnection daemon;
    BusSource source;
    int calls = 0;
    int lastStep = 0;

    Peers()
    {
        int ends[2];
        socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends);
        sd_event_new(event.out());
        sd_bus_new(service.out());
        sd_bus_set_fd(service.get(), ends[0], ends[0]);
        sd_bus_set_bus_client(service.get(), 1);
        sd_bus_add_filter(service.get(), nullptr, called, this);
        sd_bus_new(daemon.out());
        sd_bus_set_fd(daemon.get(), ends[1], ends[1]);
        sd_bus_set_server(daemon.get(), 1, sd_id128_t{.bytes = {1}});
        sd_bus_add_filter(daemon.get(), nullptr, greeted, nullptr);
        sd_bus_start(daemon.get());
        sd_bus_start(service.get());
        setsockopt(ends[0], SOL_SOCKET, SO_SNDBUF, &smallSocket, sizeof smallSocket);
        source.attach(service.get(), event.get(), [this](int result) { lastStep = result; });
        for (int round = 0; round < 1000 && sd_bus_is_ready(service.get()) == 0; ++round) {
            runService();
            sd_bus_process(daemon.get(), nullptr);
        }
    }
    ~Peers() override { source.detach(); }

    static int greeted(sd_bus_message* call, void*, sd_bus_error*)
    {
        const bool isGreeting = sd_bus_message_is_method_call(call, nullptr, "Hello") > 0;
        return isGreeting ? sd_bus_reply_method_return(call, "s", ":1.1") : 0;
    }

    static int called(sd_bus_message* call, void* peers, sd_bus_error*)
    {
        auto& self = *static_cast<Peers*>(peers);
        ++self.calls;
        return sd_bus_reply_method_return(call, "s", self.longText.c_str());
    }

    static int answered(sd_bus_message*, void* count, sd_bus_error*)
    {
        ++*static_cast<int*>(count);
        return 0;
    }

    void call(int* answers)
    {
        sd_bus_call_method_async(
            daemon.get(), nullptr, nullptr, "/", "org.orv.Peer", "Answer", answered, answers, nullptr);
    }

    /// How often the loop had something to do; far more often when it finds no rest.
    int runService()
    {
        int rounds = 0;
        while (rounds < 10'000 && sd_event_run(event.get(), 0) > 0)
            ++rounds;
        return rounds;
    }
};

} // namespace

TEST_F(Peers, ReadNothingWhileAPartOfAReplyWaits)
{
    int answers = 0;
    for (int count = 0; count < 20; ++count)
        call(&answers);
    sd_bus_flush(daemon.get());
    runService();
    std::array<char, 2048> part;
    const auto receive = [&] { return recv(sd_bus_get_fd(daemon.get()), part.data(), part.size(), 0); };
    for (int parts = 0; parts < 50; ++parts) { // half of a reply
        ASSERT_GT(receive(), 0) << parts;
        EXPECT_LT(runService(), 10);
        ASSERT_EQ(calls, 1) << parts;
    }
}

TEST_F(Peers, AnswerEveryCallInTheEnd)
{
    int answers = 0;
    for (int count = 0; count < 20; ++count)
        call(&answers);
    for (int round = 0; answers < 20 && round < 100'000; ++round) {
        runService();
        sd_bus_process(daemon.get(), nullptr);
    }
    EXPECT_EQ(answers, 20);
    EXPECT_GE(lastStep, 0);
}

TEST_F(Peers, RestWhenOneHasGone)
{
    int answers = 0;
    for (int count = 0; count < 20; ++count)
        call(&answers);
    sd_bus_flush(daemon.get());
    runService();
    daemon.reset();
    EXPECT_LT(runService(), 100);
    EXPECT_LE(sd_bus_is_ready(service.get()), 0);
}
