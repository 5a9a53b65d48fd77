#include "platform/linux/HostHardware.h"

#include "platform/File.h"

#include <initializer_list>
#include <string_view>

namespace orv {

namespace {

constexpr std::size_t largestSystemFile = 1u << 20;
constexpr const char* unknownMachine = "Linux";

// A sysfs text ends with a newline, a device-tree text with a NUL.
std::string firstLine(const std::string& path)
{
    const auto content = readFile(path, largestSystemFile).value_or("");
    return content.substr(0, content.find_first_of(std::string_view("\n\0", 2)));
}

std::string processorName(const std::string& root)
{
    const auto content = readFile(root + "/proc/cpuinfo", largestSystemFile).value_or("");
    const auto label = content.find("model name");
    const auto colon = label == std::string::npos ? label : content.find(": ", label);
    if (colon == std::string::npos)
        return "";
    return content.substr(colon + 2, content.find('\n', colon) - colon - 2);
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

HostHardware::HostHardware(const std::string& root)
{
    const auto deviceTreeModel = firstLine(root + "/proc/device-tree/model");
    const auto model = firstNonEmpty({firstLine(root + "/sys/class/dmi/id/product_name"), deviceTreeModel});
    systemValues["hw.model"] = model;
    systemValues["machdep.cpu.brand_string"] = firstNonEmpty({processorName(root), model});
}

std::optional<std::string> HostHardware::systemValue(const std::string& name)
{
    const auto found = systemValues.find(name);
    return found == systemValues.end() ? std::nullopt : std::optional(found->second + '\0');
}

} // namespace orv
