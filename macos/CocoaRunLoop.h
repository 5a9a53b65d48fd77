#pragma once

#include "platform/RunLoop.h"

namespace orv {

/// The main run loop, and the dispatch queues.
class CocoaRunLoop final : public RunLoop {
public:
    [[nodiscard]] std::unique_ptr<Timer> scheduleRepeating(Seconds interval, std::function<void()> fire) override;
    void runAfter(Seconds delay, std::function<void()> run) override;
    void post(std::function<void()> run) override;
    void postToBackground(std::function<void()> run) override;
};

} // namespace orv
