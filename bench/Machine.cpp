// usage: bench-machine [--other-keys N] [--stepping] [--exchange-delay MILLISECONDS]
// Prints the machine file of a Mac with 60 readings behind 66 keys.

#include "bench/support/CatalogueMac.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

int main(int argumentCount, char** arguments)
{
    orv::CatalogueMac mac;
    for (int index = 1; index < argumentCount; ++index) {
        const std::string_view option = arguments[index];
        const char* value = index + 1 < argumentCount ? arguments[index + 1] : "0";
        if (option == "--other-keys")
            mac.otherKeys = std::strtoul(value, nullptr, 10);
        if (option == "--exchange-delay")
            mac.exchangeDelay = std::strtod(value, nullptr);
        if (option == "--stepping")
            mac.stepping = true;
    }
    std::puts(mac.text().c_str());
    return 0;
}
