#include "tests/support/Interleavings.h"

#include <algorithm>

namespace orv {

namespace {

constexpr std::size_t noTask = ~std::size_t{0};
thread_local std::size_t ownTask = noTask;

} // namespace

bool Interleavings::next()
{
    if (orders++ == 0)
        return true;
    while (!choices.empty() && choices.back().taken + 1 == choices.back().of)
        choices.pop_back();
    if (choices.empty())
        return false;
    ++choices.back().taken;
    return true;
}

void Interleavings::run(
    const Tasks& tasks, const std::function<bool()>& mayOtherStep, const std::function<void()>& stepOfOther)
{
    position = 0;
    mayOther = mayOtherStep;
    other = stepOfOther;
    running.clear();
    for (std::size_t index = 0; index < tasks.size(); ++index)
        running.push_back(std::make_unique<Task>());
    if (tasks.size() == 1) // needs no thread of its own, whose start would take longer than all its steps
        return runAlone(tasks[0]);
    std::vector<std::thread> threads;
    for (std::size_t index = 0; index < tasks.size(); ++index) {
        threads.emplace_back([this, index, &tasks] {
            ownTask = index;
            running[index]->turn.acquire();
            tasks[index]();
            running[index]->hasEnded = true;
            if (const auto following = nextTask(index); following != noTask)
                running[following]->turn.release();
        });
    }
    running[nextTask(noTask)]->turn.release();
    for (auto& thread : threads)
        thread.join();
}

void Interleavings::runAlone(const std::function<void()>& task)
{
    ownTask = nextTask(noTask);
    task();
    ownTask = noTask;
}

void Interleavings::giveTurn(bool isWaiting)
{
    if (ownTask == noTask)
        return; // not while it runs
    running[ownTask]->isWaiting = isWaiting;
    const auto following = nextTask(ownTask);
    if (following == ownTask)
        return;
    const auto own = ownTask;
    running[following]->turn.release();
    running[own]->turn.acquire();
}

// The current task first: that is what goes on where nothing is chosen any more.
std::vector<std::size_t> Interleavings::candidates(std::size_t current) const
{
    std::vector<std::size_t> ready;
    for (const bool areWaiting : {false, true}) {
        for (std::size_t index = 0; index < running.size() && (!areWaiting || ready.empty()); ++index) {
            if (!running[index]->hasEnded && running[index]->isWaiting == areWaiting)
                ready.push_back(index);
        }
    }
    const auto own = std::ranges::find(ready, current);
    if (own != ready.end())
        std::rotate(ready.begin(), own, own + 1);
    return ready;
}

std::size_t Interleavings::choose(std::size_t number)
{
    if (number < 2 || position >= depth)
        return 0;
    if (position == choices.size())
        choices.push_back({.taken = 0, .of = number});
    return choices[position++].taken;
}

std::size_t Interleavings::nextTask(std::size_t current)
{
    for (;;) {
        const auto ready = candidates(current);
        if (ready.empty())
            return noTask;
        const auto choice = choose(ready.size() + (mayOther() ? 1 : 0));
        if (choice == ready.size()) {
            other();
            continue;
        }
        for (auto& task : running)
            task->isWaiting = false;
        return ready[choice];
    }
}

} // namespace orv
