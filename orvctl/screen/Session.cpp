#include "orvctl/screen/Session.h"

#include "orvctl/screen/FaultRestore.h"

#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>

namespace orv {

Session::Session(Top& shownTop, Feed& itsFeed, std::string orvctl, bool hasColour)
    : top(shownTop)
    , feed(itsFeed)
    , explainer(std::move(orvctl))
    , screen((rememberTerminal(), hasColour))
{
    restoreTerminalAtFaults(complaints);
}

Session::~Session()
{
    forgetTerminal();
}

void Session::run()
{
    feed.take(top);
    feed.start([this](const News& news) {
        const std::lock_guard lock(mutex);
        news(top);
        draw();
    });
    while (isGoingOn())
        wait();
    feed.stop();
}

bool Session::isGoingOn()
{
    const std::lock_guard lock(mutex);
    if (!isOver && feed.fault.empty())
        draw();
    return !isOver && feed.fault.empty();
}

void Session::draw()
{
    screen.show(top.frame(screen.size(), feed.now()));
}

int Session::timeLeft()
{
    const std::lock_guard lock(mutex);
    const auto due = feed.due();
    if (!due)
        return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*due - Clock::now()).count();
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, 3'600'000));
}

void Session::wait()
{
    std::array<pollfd, 4> awaited{{{STDIN_FILENO, POLLIN, 0}, {signals.descriptor(), POLLIN, 0},
        {feed.descriptor(), POLLIN, 0}, {explainer.descriptor(), POLLIN, 0}}};
    if (poll(awaited.data(), awaited.size(), timeLeft()) < 0)
        return; // a signal, which the next time is there to be taken
    const std::lock_guard lock(mutex);
    if (awaited[1].revents)
        takeSignals();
    if (awaited[0].revents)
        takeKeys(awaited[0].revents);
    if (awaited[3].revents) {
        if (const auto answer = explainer.take())
            top.explained(*answer);
    }
    const auto due = feed.due();
    if (awaited[2].revents || (due && *due <= Clock::now()))
        feed.take(top);
}

// A terminal that has gone is always readable, and has nothing to be read.
void Session::takeKeys(short events)
{
    int waiting = 0;
    if ((events & (POLLHUP | POLLERR | POLLNVAL)) || ioctl(STDIN_FILENO, FIONREAD, &waiting) != 0 || waiting == 0) {
        isOver = true;
        return;
    }
    while (const auto key = screen.nextKey())
        obey(top.press(*key));
}

void Session::obey(const Command& command)
{
    switch (command.kind) {
    case Command::Kind::none:
        return;
    case Command::Kind::quit:
        isOver = true;
        return;
    case Command::Kind::redraw:
        return screen.redraw();
    case Command::Kind::explain:
        return explainer.ask(command.subject, feed.explainOptions());
    default:
        feed.obey(command);
        feed.take(top);
    }
}

void Session::takeSignals()
{
    bool isResized = false;
    for (const int signal : signals.take()) {
        if (signal == SIGTSTP)
            stop();
        else if (signal == SIGCONT)
            screen.enter();
        else if (signal == SIGWINCH)
            isResized = true;
        else
            isOver = true;
    }
    if (isResized)
        screen.resize();
}

void Session::stop()
{
    screen.leave();
    Signals::stop();
    screen.enter();
}

} // namespace orv
