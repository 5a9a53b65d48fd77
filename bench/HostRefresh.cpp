// A refresh of the machine that the program runs on: through the driver's files, against the same entries made by hand
// and beside libsensors, and through its key_at_index attributes, against the same three calls a key.

#include "bench/support/CatalogueMac.h"
#include "bench/support/DriverFiles.h"
#include "bench/support/EntriesByHand.h"
#include "linux/drivers/HostHardware.h"
#include "simulated/MachineFile.h"
#include "smc/FourCharCode.h"
#include "smc/SMC.h"
#include "tests/support/FakeDriver.h"
#include "thermal/Collection.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <linux/magic.h>
#include <sched.h>
#include <sensors/sensors.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

using namespace orv;

// Asked by libsensors alone, which reads no /sys that is not one.
extern "C" int statfs(const char*, struct statfs* information) noexcept
{
    *information = {};
    information->f_type = SYSFS_MAGIC;
    return 0;
}

namespace {

void refreshThroughFiles(benchmark::State& state)
{
    const DriverFiles files;
    SysfsAttributes attributes;
    HostHardware hardware(files.root, attributes);
    setHardware(hardware);
    SMC smc;
    std::size_t entries = 0;
    // In its first minute the driver is looked at for files that come late.
    for (int refresh = 0; refresh < 12; ++refresh)
        entries = Orv_SMCHelper::collectIntel(smc).size();
    for (auto _ : state)
        benchmark::DoNotOptimize(Orv_SMCHelper::collectIntel(smc));
    state.counters["entries"] = static_cast<double>(entries);
}

void entriesByHand(benchmark::State& state)
{
    const DriverFiles files;
    const EntriesByHand byHand(files);
    for (auto _ : state)
        benchmark::DoNotOptimize(byHand.collect());
    state.counters["entries"] = static_cast<double>(byHand.collect().size());
}

/// Makes a folder the root of the file system for as long as it lives, since libsensors knows no other /sys. Whoever
/// may not do that as root may do it as one of a user namespace of its own.
class ChangedRoot {
public:
    explicit ChangedRoot(const std::string& folder)
        : former(open("/", O_PATH | O_DIRECTORY | O_CLOEXEC))
        , isChanged(chroot(folder.c_str()) == 0 || (unshare(CLONE_NEWUSER) == 0 && chroot(folder.c_str()) == 0))
    {
    }
    ChangedRoot(const ChangedRoot&) = delete;
    ChangedRoot& operator=(const ChangedRoot&) = delete;
    ~ChangedRoot()
    {
        if (isChanged && (fchdir(former) != 0 || chroot(".") != 0))
            std::abort();
        close(former);
    }

    explicit operator bool() const { return isChanged; }

private:
    int former;
    bool isChanged;
};

struct ChipValue {
    const sensors_chip_name* chip;
    int number;
};

std::vector<ChipValue> valuesOfChips()
{
    std::vector<ChipValue> values;
    int chipNumber = 0;
    while (const auto* chip = sensors_get_detected_chips(nullptr, &chipNumber)) {
        int featureNumber = 0;
        while (const auto* feature = sensors_get_features(chip, &featureNumber)) {
            int valueNumber = 0;
            while (const auto* value = sensors_get_all_subfeatures(chip, feature, &valueNumber))
                values.push_back({chip, value->number});
        }
    }
    return values;
}

void libsensorsOnFiles(benchmark::State& state)
{
    const DriverFiles files;
    const ChangedRoot root(files.root);
    if (!root || sensors_init(nullptr) != 0)
        return state.SkipWithError("libsensors was not given the files");
    const auto values = valuesOfChips();
    for (auto _ : state) {
        for (const auto& [chip, number] : values) {
            double value = 0;
            sensors_get_value(chip, number, &value);
            benchmark::DoNotOptimize(value);
        }
    }
    state.counters["values"] = static_cast<double>(values.size());
    sensors_cleanup();
}

/// A driver in memory each of whose calls also is one of the system, as those of a real one are.
class CalledDriver final : public SMCAttributes {
public:
    CalledDriver()
        : scratch(memfd_create("driver", MFD_CLOEXEC))
    {
    }

    FileDescriptor open(const std::string& path, Access access) override { return driver.open(path, access); }
    bool exists(const std::string& path) override { return driver.exists(path); }
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

    bool lock(int) override { return flock(scratch.get(), LOCK_EX | LOCK_NB) == 0; }
    void unlock(int) override { flock(scratch.get(), LOCK_UN); }
    void pause() override { }

    FakeDriver driver;

private:
    FileDescriptor scratch;
};

void addKeys(FakeDriver& driver)
{
    std::vector<FakeDriver::Key> keys;
    for (const auto& name : CatalogueMac{}.keys())
        keys.push_back({name, name.starts_with('T') ? "sp78" : "fpe2", std::string("\x2f\x80", 2)});
    driver.addApplesmc(DriverFiles::folder, std::move(keys));
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
    const std::string path = std::string(DriverFiles::folder) + "/key_at_index";
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
BENCHMARK(entriesByHand)->Unit(benchmark::kMicrosecond);
BENCHMARK(libsensorsOnFiles)->Unit(benchmark::kMicrosecond);
BENCHMARK(refreshThroughIndex)->Unit(benchmark::kMicrosecond);
BENCHMARK(threeCallsAKey)->Unit(benchmark::kMicrosecond);

} // namespace
