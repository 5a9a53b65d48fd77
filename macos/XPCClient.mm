#import "macos/FoundationValue.h"
#import "macos/OrvXPCRequestData.h"
#include "service/Client.h"

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace orv {

namespace {

constexpr std::chrono::seconds patience{10};
constexpr const char* bundleIdentifier = ORV_BUNDLE_IDENTIFIER;

/// Takes the first of the answers that a connection's handlers offer. They may still offer one when nobody waits.
class Mailbox {
public:
    void offer(ServiceAnswer answer)
    {
        if (!isTaken.exchange(true))
            promise.set_value(std::move(answer));
    }

    std::future<ServiceAnswer> future() { return promise.get_future(); }

private:
    std::atomic<bool> isTaken = false;
    std::promise<ServiceAnswer> promise;
};

ServiceAnswer failure(const std::string& reason)
{
    return {std::nullopt, std::string("the service ") + bundleIdentifier + " cannot be asked: " + reason};
}

// Where to look, for one line.
ServiceAnswer unreachable(const std::string& reason)
{
    return failure(reason + "; see launchctl print gui/" + std::to_string(getuid()) + "/" + bundleIdentifier);
}

ServiceAnswer received(NSDictionary* reply)
{
    auto value = valueOfObject(reply);
    return value ? ServiceAnswer{std::move(value), {}} : failure("its reply cannot be read");
}

NSXPCConnection* openConnection()
{
    NSXPCConnection* connection = [[NSXPCConnection alloc] initWithMachServiceName:foundationText(bundleIdentifier)
                                                                           options:0];
    connection.remoteObjectInterface = [NSXPCInterface interfaceWithProtocol:@protocol(OrvXPCRequestData)];
    [connection resume];
    return connection;
}

void send(Request request, NSXPCConnection* connection, const std::shared_ptr<Mailbox>& given)
{
    const auto mailbox = given; // a block would capture the reference
    const auto takeReply = ^(NSDictionary* reply) { mailbox->offer(received(reply)); };
    const auto takeError = ^(NSError* error) { mailbox->offer(unreachable(coreText(error.localizedDescription))); };
    id<OrvXPCRequestData> service = [connection remoteObjectProxyWithErrorHandler:takeError];
    switch (request) {
    case Request::thermal:
        return [service getModelDatawithReply:takeReply];
    case Request::bluetooth:
        return [service getBTDataWithReply:takeReply];
    }
}

std::vector<ServiceAnswer> ask(std::span<const RequestRow> asked)
{
    @autoreleasepool {
        const auto deadline = std::chrono::steady_clock::now() + patience;
        NSXPCConnection* connection = openConnection();
        std::vector<std::future<ServiceAnswer>> expected;
        for (const auto& row : asked) {
            const auto mailbox = std::make_shared<Mailbox>();
            expected.push_back(mailbox->future());
            send(row.request, connection, mailbox);
        }
        std::vector<ServiceAnswer> answers;
        for (auto& answer : expected) {
            const bool isAnswered = answer.wait_until(deadline) == std::future_status::ready;
            answers.push_back(isAnswered ? answer.get() : failure("it does not answer"));
        }
        [connection invalidate];
        return answers;
    }
}

} // namespace

ServiceAnswer askService(Request request)
{
    return ask(std::span(&requests[static_cast<std::size_t>(request)], 1)).front();
}

std::vector<ServiceAnswer> askServiceForAll()
{
    return ask(requests);
}

} // namespace orv
