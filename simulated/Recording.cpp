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
    auto file = openRegularFile(path);
    if (!file) {
        fault = path + ": " + std::strerror(errno);
        return std::nullopt;
    }
    auto recording = readFirstMoment(std::move(file), fault);
    if (!recording || !recording->lookThrough(fault)) {
        fault = path + ": " + fault + "; see orv-machine-file(5)";
        return std::nullopt;
    }
    if (!recording->cutNotice.empty())
        recording->cutNotice = path + ": " + recording->cutNotice;
    return recording;
}

std::optional<RecordingStep> Recording::next()
{
    std::string ignored; // every line could be used when the recording was opened
    return readStep(ignored);
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

Recording::Recording(MachineFile machine, LineReader followingLines)
    : firstMoment(std::move(machine))
    , lines(std::move(followingLines))
    , firstStep(lines.mark())
{
    if (!firstMoment.smc)
        return;
    for (const auto& row : *firstMoment.smc)
        keys.insert(row.key);
}

std::optional<Recording> Recording::readFirstMoment(FileDescriptor file, std::string& fault)
{
    LineReader lines(std::move(file));
    const auto text = firstObject(lines, fault);
    auto machine = text ? parseMachine(*text, fault) : std::nullopt;
    return machine ? std::optional(Recording(std::move(*machine), std::move(lines))) : std::nullopt;
}

// Nothing at the end, which a last line without a newline may be that was cut off, and for a fault.
std::optional<RecordingStep> Recording::readStep(std::string& fault)
{
    auto line = lines.next(longestStep);
    while (line && isBlank(*line))
        line = lines.next(longestStep);
    if (!line) {
        if (errno != 0)
            fault = lineFault(lines.lineNumber() + 1, readFault());
        return std::nullopt;
    }
    std::string why;
    const auto value = parseStrictJSON(*line, why);
    if (!value && !lines.isLineEnded()) {
        cutNotice = "line " + std::to_string(lines.lineNumber()) + " was cut off; what stands before it is used";
        return std::nullopt;
    }
    StepReader reader(keys, firstMoment.hid.size(), previous);
    auto step = value ? reader.read(*value) : RecordingStep();
    if (!value || !reader.fault.empty()) {
        fault = lineFault(lines.lineNumber(), printableASCII(value ? reader.fault : why));
        return std::nullopt;
    }
    previous = step.at;
    return step;
}

// Reads all steps once and goes back to the first.
bool Recording::lookThrough(std::string& fault)
{
    while (const auto step = readStep(fault))
        lastMoment = step->at;
    if (fault.empty() && !rewind())
        fault = std::strerror(errno);
    return fault.empty();
}

} // namespace orv
