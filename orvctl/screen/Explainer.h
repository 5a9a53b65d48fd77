#pragma once

#include "base/FileDescriptor.h"

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace orv {

/// Asks `orvctl explain`, a program of its own, so that a slow answer delays nothing. One question at a time.
class Explainer {
public:
    explicit Explainer(std::string program)
        : orvctl(std::move(program))
    {
    }
    ~Explainer() { end(); }
    Explainer(const Explainer&) = delete;
    Explainer& operator=(const Explainer&) = delete;

    /// Drops a question that was not answered.
    void ask(const std::string& subject, const std::vector<std::string>& options);
    /// Readable when there is more of the answer; below 0 when nothing is awaited.
    int descriptor() const { return output ? output.get() : -1; }
    /// Takes what there is of the answer, which is returned when it is whole.
    std::optional<std::string> take();

private:
    void end();

    const std::string orvctl;
    pid_t child = 0;
    FileDescriptor output;
    std::string answer;
};

} // namespace orv
