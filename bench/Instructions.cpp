// usage: bench-instructions NAME
// Does one piece of work, between whose first and last instruction valgrind counts (scripts/bench instructions).

#include "bench/support/DriverFiles.h"
#include "bench/support/EntriesByHand.h"
#include "bench/support/SampleReport.h"
#include "bluetooth/SystemProfilerReport.h"
#include "linux/drivers/HostHardware.h"
#include "smc/SMC.h"
#include "thermal/Collection.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <functional>
#include <string>
#include <string_view>

using namespace orv;

/// The name that valgrind is given: what runs inside is counted, and nothing else.
extern "C" [[gnu::noinline]] void counted(const std::function<void()>& work)
{
    work();
    asm volatile("" ::: "memory");
}

namespace {

// The first times are not like the others: pages, names that are bound when they are needed, and a driver that has yet
// to show all of its files.
constexpr int warmUp = 100;

void countSettled(const std::function<void()>& work)
{
    for (int done = 0; done < warmUp; ++done)
        work();
    counted(work);
}

void reportReader()
{
    const auto text = sampleReport(20'000);
    countSettled([&] { parseBluetoothReport(text); });
}

void documentOfReport()
{
    const auto text = sampleReport(20'000);
    countSettled([&] { const auto document = nlohmann::json::parse(text); });
}

void refreshThroughFiles()
{
    const DriverFiles files;
    SysfsAttributes attributes;
    HostHardware hardware(files.root, attributes);
    setHardware(hardware);
    SMC smc;
    countSettled([&] { Orv_SMCHelper::collectIntel(smc); });
}

void entriesByHand()
{
    const DriverFiles files;
    const EntriesByHand byHand(files);
    countSettled([&] { byHand.collect(); });
}

constexpr struct {
    std::string_view name;
    void (*count)();
} works[] = {
    {"reportReader", reportReader},
    {"documentOfReport", documentOfReport},
    {"refreshThroughFiles", refreshThroughFiles},
    {"entriesByHand", entriesByHand},
};

} // namespace

int main(int argumentCount, char** arguments)
{
    const std::string_view wanted = argumentCount == 2 ? arguments[1] : "";
    for (const auto& [name, count] : works) {
        if (name == wanted)
            return count(), 0;
    }
    return std::fputs("usage: bench-instructions NAME\n", stderr), 2;
}
