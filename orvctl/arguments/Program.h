#pragma once

#include "orvctl/arguments/Arguments.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace orv {

/// A program's arguments: declared, then parsed once.
class Program : public Arguments {
public:
    Program(const std::string& name, const std::string& does);
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program();

    void requireCommand();
    /// `text` is asked for, once all arguments were read, when --version was given.
    Option addVersion(const std::function<std::string()>& text, const std::string& does);

    /// Tells why arguments cannot be used, with the command that they were for, or "" without one; the exit status.
    using TellMisused = std::function<int(const std::string& command, const std::string& why)>;

    /// When there is nothing more to do: the exit status, 0 after --help or --version.
    std::optional<int> parse(int argumentCount, char** arguments, const TellMisused& tellMisused);

private:
    std::unique_ptr<CLI::App> owned;
};

} // namespace orv
