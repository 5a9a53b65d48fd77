#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <semaphore>
#include <thread>
#include <vector>

namespace orv {

/// Lets tasks take their steps in every order, one order after the other. A task is code that calls `step` before each
/// of its steps; between two calls it runs alone. Up to a number of steps every choice of whose turn it is is tried;
/// from there on a task runs until it waits or ends.
class Interleavings {
public:
    using Tasks = std::vector<std::function<void()>>;

    explicit Interleavings(std::size_t stepsToChoose)
        : depth(stepsToChoose)
    {
    }

    /// Whether there is another order; the first call is true.
    bool next();
    /// Runs the tasks in this order. Beside them stands `other`, which takes one step a call and says whether it may.
    void run(const Tasks& tasks, const std::function<bool()>& mayOtherStep, const std::function<void()>& stepOfOther);

    /// The calling task is about to take a step.
    void step() { giveTurn(false); }
    /// The calling task waits until another one has taken a step, if there is one.
    void wait() { giveTurn(true); }

    std::size_t orders = 0; // so far

private:
    struct Choice {
        std::size_t taken = 0;
        std::size_t of = 1;
    };
    struct Task {
        std::binary_semaphore turn{0};
        bool isWaiting = false;
        bool hasEnded = false;
    };

    void runAlone(const std::function<void()>& task);
    void giveTurn(bool isWaiting);
    std::vector<std::size_t> candidates(std::size_t current) const;
    std::size_t choose(std::size_t number);
    std::size_t nextTask(std::size_t current);

    const std::size_t depth;
    std::vector<Choice> choices;
    std::size_t position = 0;
    std::vector<std::unique_ptr<Task>> running;
    std::function<bool()> mayOther;
    std::function<void()> other;
};

} // namespace orv
