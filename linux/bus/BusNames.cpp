#include "linux/bus/BusNames.h"

namespace orv {

namespace {

char pathCharacter(char character)
{
    const bool isLetter = (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
    if (isLetter || (character >= '0' && character <= '9') || character == '_')
        return character;
    return character == '.' ? '/' : '_';
}

} // namespace

std::string objectPath(const std::string& bundleIdentifier)
{
    std::string path = "/";
    for (const char character : bundleIdentifier)
        path += pathCharacter(character);
    return path;
}

} // namespace orv
