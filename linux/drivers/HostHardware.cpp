#include "linux/drivers/HostHardware.h"

#include "base/File.h"

#include <initializer_list>
#include <string_view>
#include <utility>

namespace orv {

namespace {

constexpr std::size_t largestSystemFile = 16u << 20; // /proc/cpuinfo takes some KB for each processor
constexpr const char* unknownMachine = "Linux";

std::string trimmed(std::string_view text)
{
    constexpr std::string_view blank = " \t";
    const auto first = text.find_first_not_of(blank);
    if (first == std::string_view::npos)
        return "";
    return std::string(text.substr(first, text.find_last_not_of(blank) - first + 1));
}

// The first "model name" line of /proc/cpuinfo, which processors other than x86 do not have.
std::string processorName(const std::string& root)
{
    const auto content = readFile(root + "/proc/cpuinfo", largestSystemFile).value_or("");
    const auto label = content.find("model name");
    if (label == std::string::npos)
        return "";
    const auto line = std::string_view(content).substr(label, content.find('\n', label) - label);
    const auto colon = line.find(':');
    return colon == std::string_view::npos ? "" : trimmed(line.substr(colon + 1));
}

std::string firstNonEmpty(std::initializer_list<std::string> texts)
{
    for (const auto& text : texts) {
        if (!text.empty())
            return text;
    }
    return unknownMachine;
}

} // namespace

HostHardware::HostHardware(const std::string& root, SMCAttributes& attributes, std::function<void()> onNewKeys)
    : driver(attributes, root, std::move(onNewKeys))
{
    const auto productName = trimmed(firstLineOfFile(root + "/sys/class/dmi/id/product_name", largestSystemFile));
    const auto deviceTreeModel = trimmed(firstLineOfFile(root + "/proc/device-tree/model", largestSystemFile));
    // On Apple silicon the device tree's text names both the maker and the chip, and nothing else does.
    const auto appleModel = deviceTreeModel.starts_with("Apple ") ? deviceTreeModel : "";
    const auto model = firstNonEmpty({appleModel, productName, deviceTreeModel});
    systemValues["hw.model"] = model;
    systemValues["machdep.cpu.brand_string"] = firstNonEmpty({appleModel, processorName(root), model});
}

std::optional<std::string> HostHardware::systemValue(const std::string& name)
{
    const auto found = systemValues.find(name);
    return found == systemValues.end() ? std::nullopt : std::optional(found->second + '\0');
}

} // namespace orv
