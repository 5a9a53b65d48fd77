// A system bus with a logind on it that say what the input says, in its order, and clocks that jump as it says, to what
// follows them.

#include "fuzz/support/Answers.h"
#include "fuzz/support/Fuzzer.h"
#include "fuzz/support/MessageBuilder.h"
#include "linux/LoginWorkspace.h"
#include "linux/SpawnLauncher.h"
#include "linux/loop/EventRunLoop.h"
#include "tests/support/FakeSystemBus.h"

#include <array>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <string>

using namespace orv;

namespace {

constexpr const char* login = "org.freedesktop.login1";
constexpr const char* loginPath = "/org/freedesktop/login1";
constexpr const char* loginManager = "org.freedesktop.login1.Manager";
constexpr const char* daemon = "org.freedesktop.DBus";
constexpr const char* daemonPath = "/org/freedesktop/DBus";

class Night final : public SleepWakeObserver {
public:
    Night(EventRunLoop& runLoop, SpawnLauncher& launcher, Answers& given)
        : answers(given)
        , event(runLoop.event())
        , systemBus(event)
        , workspace(runLoop, launcher, systemBus, [this] { return asleep; })
    {
        workspace.registerSleepWakeObservers(*this);
        systemBus.watch([](sd_bus*) {}, [this] { isBusThere = !isBusThere; });
        settle();
    }

    void run()
    {
        constexpr int most = 200;
        for (int count = 0; count < most && !answers.isAtEnd(); ++count) {
            told.clear();
            step();
            require(told.size() <= 1, "an event has one consequence");
        }
        requireThatAllIsFollowedAgain();
    }

private:
    void workspaceDidWakeUp() override
    {
        told += 'w';
        isAsleep = false;
        isWakeOwed = false;
    }

    void workspaceWillSleep() override
    {
        told += 's';
        isAsleep = true;
    }

    void settle()
    {
        constexpr int many = 1000;
        int rounds = 0;
        while (sd_event_run(event, 0) > 0 || fakeBus.process())
            require(++rounds < many, "nothing goes on for ever");
    }

    void step()
    {
        switch (answers.byte() % 10) {
        case 0:
            return answerProperly(1);
        case 1:
            return answerProperly(SIZE_MAX);
        case 2:
            fakeBus.answerWithError();
            return settle();
        case 3:
            return answerAnything();
        case 4:
            return prepareForSleep(answers.byte() % 2);
        case 5:
            return loseLogin();
        case 6:
            return sendAnything();
        case 7:
            return letTimePass();
        case 8:
            return tick();
        default:
            return changeBus();
        }
    }

    void answerProperly(std::size_t most)
    {
        for (; most > 0 && !fakeBus.calls.empty(); --most) {
            fakeBus.answer();
            settle();
        }
    }

    void answerAnything()
    {
        const auto answer = fakeBus.newAnswer();
        appendAnything(answer.get());
        fakeBus.send(answer);
        settle();
    }

    void prepareForSleep(bool isStarting)
    {
        const auto signal = fakeBus.newSignal(login, loginPath, loginManager, "PrepareForSleep");
        sd_bus_message_append(signal.get(), "b", isStarting);
        fakeBus.send(signal);
        settle();
        require(told.empty() || told == (isStarting ? "s" : "w"), "what is told is what was announced");
    }

    void loseLogin()
    {
        const auto signal = fakeBus.newSignal(daemon, daemonPath, daemon, "NameOwnerChanged");
        sd_bus_message_append(signal.get(), "sss", login, ":1.7", answers.byte() % 2 == 0 ? "" : ":1.8");
        fakeBus.send(signal);
        settle();
        require(told != "s", "nobody falls asleep because of a restart");
        require(!isAsleep || !isFollowing(), "a sleep ends with who announced it");
    }

    void sendAnything()
    {
        constexpr std::array senders{login, daemon, "org.bluez", ":1.7"};
        constexpr std::array paths{loginPath, daemonPath, "/"};
        constexpr std::array interfaces{loginManager, daemon, "org.freedesktop.DBus.Properties"};
        constexpr std::array members{"PrepareForSleep", "NameOwnerChanged", "PropertiesChanged", "PrepareForShutdown"};
        const auto one = [&](const auto& names) { return names[answers.byte() % std::size(names)]; };
        const auto* sender = one(senders);
        const auto* path = one(paths);
        const auto* interface = one(interfaces);
        const auto signal = fakeBus.newSignal(sender, path, interface, one(members));
        appendAnything(signal.get());
        fakeBus.send(signal);
        settle();
    }

    void appendAnything(sd_bus_message* message)
    {
        MessageBuilder builder(message, answers, {login, "PreparingForSleep", ":1.7", ""});
        for (auto count = message ? answers.byte() % 4 : 0; count > 0; --count) {
            switch (answers.byte() % 5) {
            case 0:
                builder.append("b", answers.byte() % 2);
                break;
            case 1:
                builder.append("h", 0);
                break;
            case 2:
                builder.appendText();
                break;
            case 3:
                builder.appendProperties();
                break;
            default:
                builder.appendVariant();
            }
        }
    }

    void letTimePass()
    {
        const std::chrono::milliseconds slept(answers.number<std::uint16_t>());
        asleep += slept;
        isWakeOwed |= slept >= std::chrono::seconds(1);
    }

    void tick()
    {
        const bool hasSlept = asleep > checked;
        checked = asleep;
        systemBus.reconnect();
        workspace.checkClocks();
        settle();
        require(told != "s" && (told.empty() || hasSlept), "clocks that stood still tell nothing");
        require(!isWakeOwed, "every sleep is followed by a wake");
    }

    void changeBus()
    {
        const auto kind = answers.byte() % 3;
        if (kind == 2)
            return fakeBus.listen();
        if (kind == 1)
            fakeBus.refuse();
        fakeBus.disconnect();
        settle();
        require(told != "s" && !isAsleep, "a sleep ends with the bus on which it was announced");
        require(!isBusThere, "who watches the bus knows that it is gone");
    }

    /// Whether everything that was asked of the bus has been answered.
    bool isFollowing() const { return fakeBus.isConnected() && fakeBus.calls.empty(); }

    void requireThatAllIsFollowedAgain()
    {
        fakeBus.disconnect();
        fakeBus.listen();
        settle();
        told.clear();
        tick();
        answerProperly(SIZE_MAX);
        require(isFollowing() && isBusThere, "a bus that is back is taken up");
        for (const bool isStarting : {true, false}) {
            told.clear();
            prepareForSleep(isStarting);
            require(isAsleep == isStarting, "what logind announces is followed");
        }
    }

    FakeSystemBus fakeBus;
    Answers& answers;
    sd_event* const event;
    std::chrono::nanoseconds asleep{};
    std::chrono::nanoseconds checked{};
    std::string told; // by the present step
    bool isAsleep = false;
    bool isWakeOwed = false;
    bool isBusThere = true;
    SystemBus systemBus;
    LoginWorkspace workspace;
};

std::ptrdiff_t openDescriptors()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static auto& runLoop = *new EventRunLoop;
    static auto& launcher = *new SpawnLauncher({});
    const auto descriptors = openDescriptors();
    Answers answers(textOf(data, size));
    Night(runLoop, launcher, answers).run();
    require(openDescriptors() == descriptors, "no descriptor is kept");
    return 0;
}
