// usage: bench-replay-floor RECORDING
// What a replay cannot do without: reads the file of bench-recorded-day line by line, makes one refresh for each line
// that has readings, from the same hardware, and writes as many bytes as its reply takes. Prints how many refreshes
// there were.

#include "base/LineReader.h"
#include "base/RegularFile.h"
#include "platform/ProcessLauncher.h"
#include "simulated/ManualRunLoop.h"
#include "simulated/SimulatedPlatform.h"
#include "smc/SMC.h"
#include "thermal/Collection.h"

#include <cstddef>
#include <cstdio>

using namespace orv;

int main(int argumentCount, char** arguments)
{
    constexpr std::size_t longest = 64u << 20;
    std::string fault;
    LineReader lines(openRegularFile(argumentCount == 2 ? arguments[1] : ""));
    const auto first = lines.next(longest);
    const auto machine = first ? parseMachine(*first, fault) : std::nullopt;
    if (!machine)
        return std::fputs("usage: bench-replay-floor RECORDING\n", stderr), 2;
    SimulatedMac mac(*machine);
    setHardware(mac);
    const OrvTemperatureFans profile;
    SMC smc;
    std::size_t refreshes = 0;
    for (auto line = lines.next(longest); line; line = lines.next(longest)) {
        if (line->find("\"smc\"") == std::string_view::npos)
            continue;
        refreshes += Orv_SMCHelper::collectThermalReadings(profile, smc, mac).size() > 0;
    }
    std::printf("%zu\n", refreshes);
    return 0;
}
