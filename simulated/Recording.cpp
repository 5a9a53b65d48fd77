#include "simulated/Recording.h"

#include "base/RegularFile.h"
#include "simulated/StepReader.h"
#include "json/JSONReader.h"
#include "json/ObjectEnd.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

namespace orv {

namespace {

constexpr std::size_t largestFirstMoment = 64u << 20;
constexpr std::size_t longestStep = 16u << 20;

bool isBlank(std::string_view text)
{
    return text.find_first_not_of(" \t\r") == std::string_view::npos;
}

std::string lineFault(std::size_t number, const std::string& what)
{
    return "line " + std::to_string(number) + ": " + what;
}

std::string inFile(const std::string& path, const std::string& fault)
{
    return path + ": " + fault + "; see orv-machine-file(5)";
}

std::string readFault()
{
    return errno == EFBIG ? "the line is too long" : std::strerror(errno);
}

// The first object, which may span lines, or a whole file that does not begin with one.
std::optional<std::string> firstObject(LineReader& lines, std::string& fault)
{
    std::string text;
    ObjectEnd end;
    while (const auto line = lines.next(largestFirstMoment - text.size())) {
        const auto rest = end.find(*line);
        text.append(*line).append(lines.isLineEnded() ? "\n" : "");
        if (rest && !isBlank(*rest)) {
            fault = lineFault(lines.lineNumber(), "something follows the machine on its last line");
            return std::nullopt;
        }
        if (rest)
            return text;
    }
    if (errno == 0)
        return text;
    fault = std::strerror(errno);
    return std::nullopt;
}

} // namespace

std::optional<Recording> Recording::open(const std::string& path, std::string& fault)
{
    auto recording = begin(path, fault);
    if (!recording || recording->lookThrough())
        return recording;
    fault = recording->fault();
    return std::nullopt;
}

std::optional<Recording> Recording::begin(const std::string& path, std::string& fault)
{
    auto file = openRegularFile(path);
    if (!file) {
        fault = path + ": " + std::strerror(errno);
        return std::nullopt;
    }
    LineReader lines(std::move(file));
    const auto text = firstObject(lines, fault);
    auto machine = text ? parseMachine(*text, fault) : std::nullopt;
    if (machine)
        return Recording(path, std::move(*machine), std::move(lines));
    fault = inFile(path, fault);
    return std::nullopt;
}

bool Recording::lookThrough()
{
    const auto place = lines.mark();
    const auto before = previous;
    while (next()) { }
    previous = before;
    if (stepFault.empty() && !lines.goBack(place))
        stepFault = inFile(path, std::strerror(errno));
    return stepFault.empty();
}

// Nothing from a fault on, nor at the end, which a last line without a newline may be that was cut off.
std::optional<RecordingStep> Recording::next()
{
    if (!stepFault.empty())
        return std::nullopt;
    auto line = lines.next(longestStep);
    while (line && isBlank(*line))
        line = lines.next(longestStep);
    if (line)
        return read(*line);
    if (errno != 0)
        refuse(lines.lineNumber() + 1, readFault());
    return std::nullopt;
}

bool Recording::rewind()
{
    previous = 0;
    return lines.goBack(firstStep);
}

std::string Recording::profilerOutputAt(double moment)
{
    auto output = firstMoment.profilerOutput;
    for (auto step = next(); step && step->at <= moment; step = next())
        output = step->profilerOutput.value_or(output);
    return output;
}

Recording::Recording(std::string givenPath, MachineFile machine, LineReader followingLines)
    : path(std::move(givenPath))
    , firstMoment(std::move(machine))
    , lines(std::move(followingLines))
    , firstStep(lines.mark())
{
    if (!firstMoment.smc)
        return;
    for (const auto& row : *firstMoment.smc)
        keys.insert(row.key);
}

std::optional<RecordingStep> Recording::read(std::string_view line)
{
    std::string why;
    const auto value = parseStrictJSON(line, why);
    if (!value && !lines.isLineEnded()) {
        cutNotice =
            path + ": line " + std::to_string(lines.lineNumber()) + " was cut off; what stands before it is used";
        return std::nullopt;
    }
    StepReader reader(keys, firstMoment.hid.size(), previous);
    auto step = value ? reader.read(*value) : RecordingStep();
    if (!value || !reader.fault.empty()) {
        refuse(lines.lineNumber(), printableASCII(value ? reader.fault : why));
        return std::nullopt;
    }
    previous = step.at;
    lastMoment = std::max(lastMoment, step.at);
    return step;
}

void Recording::refuse(std::size_t line, const std::string& what)
{
    stepFault = inFile(path, lineFault(line, what));
}

} // namespace orv
