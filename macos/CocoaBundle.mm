#import "macos/CocoaBundle.h"

#import "macos/FoundationValue.h"

namespace orv {

std::string CocoaBundle::identifier() const
{
    return coreText(bundle.bundleIdentifier);
}

std::vector<std::string> CocoaBundle::resources(const std::string& extension) const
{
    std::vector<std::string> paths;
    for (NSURL* url in [bundle URLsForResourcesWithExtension:foundationText(extension) subdirectory:@""])
        paths.push_back(coreText(url.path));
    return paths;
}

std::optional<std::string> CocoaBundle::groupContainer(const std::string& applicationGroup) const
{
    NSURL* container = [NSFileManager.defaultManager
        containerURLForSecurityApplicationGroupIdentifier:foundationText(applicationGroup)];
    if (!container)
        return std::nullopt;
    return coreText(container.path);
}

} // namespace orv
