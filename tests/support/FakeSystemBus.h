#pragma once

#include "base/FileDescriptor.h"
#include "linux/bus/BusHandles.h"

#include <deque>
#include <string>

namespace orv {

/// The bus that this process finds as its system bus while it lives. It takes one connection at a time, collects the
/// calls, and says only what it is told to say.
class FakeSystemBus {
public:
    /// Listens.
    FakeSystemBus();
    ~FakeSystemBus();
    FakeSystemBus(const FakeSystemBus&) = delete;
    FakeSystemBus& operator=(const FakeSystemBus&) = delete;

    // Whether connections are taken; the one that there is stays.
    void listen();
    void refuse() { listener.reset(); }
    bool isListening() const { return bool(listener); }

    void disconnect();
    bool isConnected() const { return bool(connection); }

    /// Does what can be done without waiting; whether that was anything.
    bool process();

    /// What was asked and is not answered yet, oldest first.
    std::deque<BusMessage> calls;
    /// Answers the oldest call as a bus does, or with an error.
    void answer();
    void answerWithError();

    /// A signal to be sent, or nothing when nobody is connected.
    BusMessage newSignal(const char* sender, const char* path, const char* interface, const char* member);
    /// An empty answer to the oldest call, or nothing when there is none.
    BusMessage newAnswer();
    /// Sends what one of these two made, if it can be sent.
    void send(const BusMessage& message);

private:
    static int arrived(sd_bus_message* message, void* systemBus, sd_bus_error*);
    bool accept();

    FileDescriptor listener;
    BusConnection connection;
};

} // namespace orv
