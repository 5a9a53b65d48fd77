// A refresh of the machine that the program runs on: through the driver's files, against one pread each, and through
// its key_at_index attributes, against the same three calls a key.

#include "bench/support/CatalogueMac.h"
#include "platform/linux/HostHardware.h"
#include "platform/simulated/MachineFile.h"
#include "smc/FourCharCode.h"
#include "smc/SMC.h"
#include "tests/support/FakeDriver.h"
#include "thermal/Collection.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

using namespace orv;

namespace {

constexpr const char* driverFolder = "/sys/devices/platform/applesmc.768";

std::vector<std::string> measuredKeys()
{
    std::string fault;
    const auto machine = *parseMachine(CatalogueMac{}.text(), fault);
    std::vector<std::string> keys;
    for (const auto& row : *machine.smc)
        keys.push_back(fourCharString(row.key));
    return keys;
}

void write(const std::string& path, const std::string& text)
{
    if (auto* const file = std::fopen(path.c_str(), "w")) {
        std::fputs(text.c_str(), file);
        std::fclose(file);
    }
}

/// A folder with the driver's files, which goes when the program ends.
class DriverFiles {
public:
    DriverFiles()
    {
        const auto folder = root + driverFolder + '/';
        std::filesystem::create_directories(folder);
        int temperatures = 0;
        for (const auto& key : measuredKeys()) {
            if (!key.starts_with('T'))
                continue;
            const auto stem = folder + "temp" + std::to_string(++temperatures);
            write(stem + "_label", key + '\n');
            add(stem + "_input", "47500\n");
        }
        for (const std::string fan : {"1", "2", "3"}) {
            for (const char* ending : {"_input", "_min", "_max"})
                add(folder + "fan" + fan + ending, "1200\n");
        }
    }
    DriverFiles(const DriverFiles&) = delete;
    DriverFiles& operator=(const DriverFiles&) = delete;
    ~DriverFiles() { std::filesystem::remove_all(root); }

    const std::string root = "/tmp/orv-bench-host-" + std::to_string(getpid());
    std::vector<std::string> values; // the paths of what a refresh reads

private:
    void add(const std::string& path, const std::string& text)
    {
        write(path, text);
        values.push_back(path);
    }
};

void refreshThroughFiles(benchmark::State& state)
{
    const DriverFiles files;
    SysfsAttributes attributes;
    HostHardware hardware(files.root, attributes);
    setHardware(hardware);
    SMC smc;
    const auto entries = Orv_SMCHelper::collectIntel(smc).size();
    for (auto _ : state)
        benchmark::DoNotOptimize(Orv_SMCHelper::collectIntel(smc));
    state.counters["entries"] = static_cast<double>(entries);
}

void preadOfFiles(benchmark::State& state)
{
    const DriverFiles files;
    std::vector<int> descriptors;
    for (const auto& path : files.values)
        descriptors.push_back(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    char text[32];
    for (auto _ : state) {
        for (const int descriptor : descriptors)
            benchmark::DoNotOptimize(pread(descriptor, text, sizeof(text), 0));
    }
    state.counters["values"] = static_cast<double>(descriptors.size());
    for (const int descriptor : descriptors)
        close(descriptor);
}

/// A driver in memory each of whose calls also is one of the system, as those of a real one are.
class CalledDriver final : public SMCAttributes {
public:
    CalledDriver()
        : scratch(memfd_create("driver", MFD_CLOEXEC))
    {
    }

    FileDescriptor open(const std::string& path, Access access) override { return driver.open(path, access); }
    ssize_t read(int descriptor, std::span<char> bytes) override
    {
        benchmark::DoNotOptimize(pread(scratch.get(), bytes.data(), bytes.size(), 0));
        return driver.read(descriptor, bytes);
    }
    ssize_t write(int descriptor, std::string_view text) override
    {
        benchmark::DoNotOptimize(pwrite(scratch.get(), text.data(), text.size(), 0));
        return driver.write(descriptor, text);
    }

    FakeDriver driver;

private:
    FileDescriptor scratch;
};

void addKeys(FakeDriver& driver)
{
    std::vector<FakeDriver::Key> keys;
    for (const auto& name : measuredKeys())
        keys.push_back({name, name.starts_with('T') ? "sp78" : "fpe2", std::string("\x2f\x80", 2)});
    driver.addApplesmc(driverFolder, std::move(keys));
}

void refreshThroughIndex(benchmark::State& state)
{
    CalledDriver driver;
    addKeys(driver.driver);
    HostHardware hardware("", driver);
    setHardware(hardware);
    SMC smc;
    const auto entries = Orv_SMCHelper::collectIntel(smc).size();
    for (auto _ : state) {
        benchmark::DoNotOptimize(Orv_SMCHelper::collectIntel(smc));
        driver.driver.dataReads.clear();
    }
    state.counters["entries"] = static_cast<double>(entries);
}

void threeCallsAKey(benchmark::State& state)
{
    CalledDriver driver;
    addKeys(driver.driver);
    const std::string path = std::string(driverFolder) + "/key_at_index";
    const auto index = driver.open(path, SMCAttributes::Access::readingAndWriting);
    const auto data = driver.open(path + "_data", SMCAttributes::Access::reading);
    const auto name = driver.open(path + "_name", SMCAttributes::Access::reading);
    char text[32];
    for (auto _ : state) {
        for (std::size_t key = 0; key < driver.driver.keys.size(); ++key) {
            std::snprintf(text, sizeof(text), "%zu\n", key);
            driver.write(index.get(), text);
            benchmark::DoNotOptimize(driver.read(data.get(), text));
            benchmark::DoNotOptimize(driver.read(name.get(), text));
        }
        driver.driver.dataReads.clear();
    }
}

BENCHMARK(refreshThroughFiles)->Unit(benchmark::kMicrosecond);
BENCHMARK(preadOfFiles)->Unit(benchmark::kMicrosecond);
BENCHMARK(refreshThroughIndex)->Unit(benchmark::kMicrosecond);
BENCHMARK(threeCallsAKey)->Unit(benchmark::kMicrosecond);

} // namespace
