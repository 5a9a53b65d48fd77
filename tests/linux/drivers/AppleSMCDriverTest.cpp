#include "linux/drivers/AppleSMCDriver.h"

#include "linux/drivers/AttributeText.h"
#include "smc/FourCharCode.h"
#include "smc/SMCValueDecoding.h"
#include "tests/support/FakeDriver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace orv {

namespace {

using namespace std::string_literals;

const std::string folder = "/sys/devices/platform/applesmc.768";

std::optional<double> value(AppleSMCDriver& driver, const std::string& key)
{
    SMCVal val{.key = key};
    Hardware::KeyInfo info;
    for (const auto& outcome :
        {driver.keyInfo(fourCharCode(key), info), driver.readBytes(fourCharCode(key), val.bytes)}) {
        if (outcome.status != 0 || outcome.result != 0)
            return std::nullopt;
    }
    val.dataSize = info.dataSize;
    val.dataType = fourCharString(info.dataType);
    return decodeValue(val);
}

std::string keyNames(AppleSMCDriver& driver)
{
    std::string names;
    for (std::uint32_t index = 0, key = 0; driver.keyAtIndex(index, key).result == 0; ++index)
        names += fourCharString(key) + ' ';
    return names;
}

class IndexedKeysTest : public testing::Test {
protected:
    IndexedKeysTest()
    {
        fake.addApplesmc(folder,
            {{"#KEY", "ui32", "\0\0\0\5"s}, {"TC0P", "sp78", "\x2f\x88"}, {"TC1P", "sp78", "\x30\x10"},
                {"F0Ac", "fpe2", "\x1f\x42"}, {"MSSD", "ui8", "\5"}});
    }

    FakeDriver fake;
    AppleSMCDriver driver{fake, ""};
};

TEST_F(IndexedKeysTest, EveryKeyIsServedAtFullPrecisionInTheDriversOrder)
{
    EXPECT_TRUE(driver.hasSMC());
    EXPECT_EQ(keyNames(driver), "#KEY TC0P TC1P F0Ac MSSD ");
    EXPECT_EQ(value(driver, "#KEY"), 5.0);
    EXPECT_EQ(value(driver, "TC0P"), 47.53125);
    EXPECT_EQ(value(driver, "F0Ac"), 2000.5);
    Hardware::KeyInfo info;
    driver.keyInfo(fourCharCode("MSSD"), info);
    EXPECT_EQ(info.dataType, 0x75693800u) << "the driver prints the type without its last, zero byte";
    EXPECT_EQ(driver.keyInfo(fourCharCode("TC9P"), info).result, 0x84);
    Hardware::Bytes bytes;
    bytes.fill(7);
    driver.readBytes(fourCharCode("#KEY"), bytes);
    EXPECT_EQ(bytes[3], 5);
    EXPECT_EQ(bytes[4], 7) << "behind the number";
}

TEST_F(IndexedKeysTest, ReadIsRepeatedWhenAnotherProcessMovedTheIndex)
{
    ASSERT_TRUE(driver.hasSMC());
    EXPECT_EQ(value(driver, "TC0P"), 47.53125);
    for (std::size_t disturbances = 1; disturbances <= 40; disturbances += 13) {
        auto left = disturbances;
        fake.dataReads.clear();
        fake.afterWrite = [&] {
            if (left > 0)
                --left, fake.index = 2;
        };
        EXPECT_EQ(value(driver, "TC0P"), disturbances < 30 ? std::optional(47.53125) : std::nullopt) << disturbances;
        EXPECT_EQ(fake.dataReads.size(), std::min<std::size_t>(disturbances + 2, 32));
        fake.afterWrite = nullptr;
        driver.closeSMC();
    }
    for (int refresh = 0; refresh < 12; ++refresh) {
        EXPECT_EQ(value(driver, "TC0P"), 47.53125);
        driver.closeSMC();
    }
    fake.dataReads.clear();
    EXPECT_EQ(value(driver, "TC0P"), 47.53125);
    EXPECT_EQ(fake.dataReads.size(), 1u) << "alone again";
}

TEST_F(IndexedKeysTest, ValueThatNoTwoReadingsAgreeOnIsLostInCompany)
{
    ASSERT_TRUE(driver.hasSMC());
    fake.index = 2;
    fake.afterWrite = [&] { fake.keys[1].bytes[1] ^= 1; };
    SMCVal val;
    EXPECT_EQ(driver.readBytes(fourCharCode("TC0P"), val.bytes).status, kSMCReadingLost);
    fake.afterWrite = nullptr;
    fake.keys[1].isUnreadable = true;
    EXPECT_EQ(driver.readBytes(fourCharCode("TC0P"), val.bytes).status, SMCOutcome::failed().status);
}

TEST_F(IndexedKeysTest, LockThatAnotherProgramKeepsIsNotWaitedForTwice)
{
    fake.lockHolder = -1;
    int pauses = 0;
    fake.beforeCall = [&](FakeDriver::Call call) { pauses += call == FakeDriver::Call::pause; };
    ASSERT_TRUE(driver.hasSMC());
    EXPECT_EQ(std::exchange(pauses, 0), 399); // two seconds
    for (int refresh = 0; refresh < 3; ++refresh) {
        fake.dataReads.clear();
        EXPECT_EQ(value(driver, "TC0P"), 47.53125);
        EXPECT_EQ(fake.dataReads.size(), 2u) << "the index is not ours alone";
        driver.closeSMC();
    }
    EXPECT_EQ(pauses, 0);
    // Free again, and held for a moment.
    fake.lockHolder.reset();
    EXPECT_EQ(value(driver, "TC0P"), 47.53125);
    driver.closeSMC();
    EXPECT_EQ(fake.lockHolder, std::nullopt);
    fake.lockHolder = -1;
    fake.beforeCall = [&](FakeDriver::Call call) {
        pauses += call == FakeDriver::Call::pause;
        if (pauses == 3)
            fake.lockHolder.reset();
    };
    EXPECT_EQ(value(driver, "TC0P"), 47.53125);
    EXPECT_EQ(pauses, 3);
}

TEST_F(IndexedKeysTest, WalkSurvivesAnotherProcess)
{
    int writes = 0;
    fake.afterWrite = [&] {
        if (++writes % 3 == 1)
            fake.index = 3;
    };
    EXPECT_EQ(keyNames(driver), "#KEY TC0P TC1P F0Ac MSSD ");
    int attempts = 0;
    fake.afterWrite = [&] {
        if (fake.index == 1)
            ++attempts, fake.index = 3; // whenever that key is chosen
    };
    AppleSMCDriver disturbed(fake, "");
    EXPECT_EQ(value(disturbed, "TC0P"), std::nullopt);
    EXPECT_EQ(value(disturbed, "TC1P"), 48.0625);
    EXPECT_EQ(attempts, 2 * 32) << "it is walked again once the company was noticed";
}

TEST_F(IndexedKeysTest, UnreadableKeyCostsNoOther)
{
    fake.keys[1].isUnreadable = true;
    EXPECT_EQ(value(driver, "TC0P"), std::nullopt);
    EXPECT_EQ(value(driver, "TC1P"), 48.0625);
    EXPECT_EQ(fake.dataReads.size(), 2u) << "an error of the right key is final";
    fake.keys[2].name = ""; // as an index is answered that the SMC knows no key of
    AppleSMCDriver nameless(fake, "");
    Hardware::KeyInfo info;
    EXPECT_EQ(nameless.keyInfo(0, info).result, 0x84);
    std::uint32_t key = 0;
    EXPECT_EQ(nameless.keyAtIndex(2, key).status, SMCOutcome::failed().status);
    fake.keys[2].name = "TC1P";
    // The error of the key that another process chose is not this one's.
    fake.afterWrite = [&] { fake.afterWrite = nullptr, fake.index = 1; };
    EXPECT_EQ(value(driver, "TC1P"), 48.0625);
}

TEST_F(IndexedKeysTest, DriverThatComesBackIsOpenedAgain)
{
    EXPECT_EQ(value(driver, "TC0P"), 47.53125);
    const auto descriptors = fake.openDescriptors();
    fake.unload();
    EXPECT_EQ(value(driver, "TC0P"), std::nullopt);
    fake.load();
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(driver.hasSMC());
        EXPECT_EQ(value(driver, "TC0P"), 47.53125);
    }
    EXPECT_LE(fake.openDescriptors(), descriptors);
}

TEST_F(IndexedKeysTest, KeysThatWentAwayAreAbsent)
{
    ASSERT_TRUE(driver.hasSMC());
    fake.keys.resize(2);
    fake.index = 0;
    EXPECT_EQ(value(driver, "TC1P"), std::nullopt);
    fake.keys[1].bytes = "\x2f";
    EXPECT_EQ(value(driver, "TC0P"), std::nullopt) << "half a value is none";
}

TEST_F(IndexedKeysTest, MoreKeysThanAByteCountsAreAllServed)
{
    std::vector<FakeDriver::Key> keys;
    for (int number = 100; number < 400; ++number)
        keys.push_back({'T' + std::to_string(number), "ui8 ", std::string(1, static_cast<char>(number - 100))});
    fake.addApplesmc(folder, keys);
    AppleSMCDriver large(fake, "");
    EXPECT_EQ(value(large, "#KEY"), 300.0);
    EXPECT_EQ(value(large, "T355"), 255.0);
    EXPECT_EQ(value(large, "T399"), 43.0);
    EXPECT_EQ(keyNames(large).size(), 300u * 5);
}

TEST_F(IndexedKeysTest, AttributesThatAreNotAllThereOrCountAbsurdlyManyKeysAreNotWalked)
{
    for (const char* attribute : {"", "_name", "_type", "_data_length", "_data"}) {
        const auto file = fake.files.extract(folder + "/key_at_index" + attribute);
        EXPECT_FALSE(AppleSMCDriver(fake, "").hasSMC()) << attribute;
        fake.files[file.key()] = file.mapped();
    }
    EXPECT_TRUE(AppleSMCDriver(fake, "").hasSMC());
    for (const char* count : {"", "-1\n", "4294967295\n", "99999999999999999999\n", "many\n"}) {
        fake.files[folder + "/key_count"] = count;
        EXPECT_FALSE(AppleSMCDriver(fake, "").hasSMC()) << count;
    }
}

class SensorFilesTest : public testing::Test {
protected:
    SensorFilesTest()
    {
        fake.files = {{folder + "/temp1_label", "TC0P\n"}, {folder + "/temp1_input", "47500\n"},
            {folder + "/temp2_label", "TC1P\n"}, {folder + "/temp2_input", "-127000\n"},
            {folder + "/temp512_label", "TB0T\n"}, {folder + "/temp512_input", "30250\n"},
            {folder + "/fan1_input", "2157\n"}, {folder + "/fan1_min", "2160\n"}, {folder + "/fan15_input", "0\n"},
            // Beyond what is looked for.
            {folder + "/temp513_label", "TW0P\n"}, {folder + "/temp513_input", "40000\n"},
            {folder + "/fan16_input", "2157\n"}};
    }

    FakeDriver fake;
    AppleSMCDriver driver{fake, ""};
};

TEST_F(SensorFilesTest, FilesServeWhatTheyHave)
{
    EXPECT_EQ(keyNames(driver), "TC0P TC1P TB0T F0Ac F0Mn FEAc ");
    EXPECT_EQ(value(driver, "#KEY"), 6.0);
    EXPECT_EQ(value(driver, "TC0P"), 47.5);
    EXPECT_EQ(value(driver, "TC1P"), std::nullopt);
    EXPECT_EQ(value(driver, "TB0T"), 30.25);
    EXPECT_EQ(value(driver, "F0Ac"), 2157.0);
    EXPECT_EQ(value(driver, "F0Mx"), std::nullopt);
}

TEST_F(SensorFilesTest, NumbersNoSensorReadsAreClampedOrAbsent)
{
    ASSERT_TRUE(driver.hasSMC());
    const std::pair<const char*, std::optional<double>> cases[]{{"", std::nullopt}, {"\n", std::nullopt},
        {"47 degrees\n", std::nullopt}, {"99999999999999999999\n", std::nullopt},
        {"9223372036854775807\n", 127.99609375}, {"-9223372036854775808\n", std::nullopt}, {"0", 0.0}};
    for (const auto& [text, expected] : cases) {
        fake.files[folder + "/temp1_input"] = text;
        EXPECT_EQ(value(driver, "TC0P"), expected) << text;
    }
    fake.files[folder + "/fan1_input"] = "9223372036854775807\n";
    EXPECT_EQ(value(driver, "F0Ac"), 16383.75);
}

TEST_F(SensorFilesTest, TheyStandInForAnIndexThatCannotBeUsed)
{
    fake.addApplesmc(folder, {{"TC0P", "sp78", "\x2f\x88"}, {"TC1P", "sp78", "\x30\x10"}});
    fake.isWritable = false;
    EXPECT_EQ(value(driver, "TC0P"), 47.5);

    // Plain files, which do not follow the index.
    fake.isWritable = true;
    fake.keys.clear();
    fake.files[folder + "/key_at_index_name"] = "TC0P\n";
    AppleSMCDriver plain(fake, "");
    EXPECT_EQ(value(plain, "TC0P"), 47.5);
}

TEST_F(SensorFilesTest, EachFileIsOpenedOnceAndAgainWhenItsDriverComesBack)
{
    for (int round = 0; round < 3; ++round)
        EXPECT_EQ(value(driver, "TC0P"), 47.5);
    EXPECT_EQ(fake.openDescriptors(), 6u);
    fake.unload();
    fake.load();
    EXPECT_EQ(value(driver, "TC0P"), 47.5);
    EXPECT_EQ(fake.openDescriptors(), 6u);
}

TEST_F(SensorFilesTest, FileThatIsNoNumberIsNoKey)
{
    fake.refusals = {{folder + "/fan1_input", EINVAL}, {folder + "/temp512_input", EINVAL}};
    fake.files[folder + "/fan1_min"] = "slow\n";
    fake.files[folder + "/fan15_input"] = "";
    EXPECT_EQ(keyNames(driver), "TC0P TC1P ");
    // What is refused later only is a key without a value.
    fake.refusals = {{folder + "/temp1_input", EIO}};
    EXPECT_EQ(keyNames(driver), "TC0P TC1P ");
    EXPECT_EQ(value(driver, "TC0P"), std::nullopt);
}

TEST(MacsmcTest, LabelsStandForKeys)
{
    FakeDriver fake;
    const std::string hwmon = "/root/sys/class/hwmon/hwmon3";
    fake.files = {{"/root/sys/class/hwmon/hwmon1/name", "nvme\n"}, {hwmon + "/name", "macsmc_hwmon\n"},
        {hwmon + "/temp1_label", "NAND Flash Temperature\n"}, {hwmon + "/temp1_input", "40000\n"},
        {hwmon + "/temp2_label", "Battery Hotspot\n"}, {hwmon + "/temp2_input", "31125\n"},
        {hwmon + "/temp512_label", "WiFi/BT Module Temp\n"}, {hwmon + "/temp512_input", "141000\n"},
        {hwmon + "/fan1_label", "Fan 2\n"}, {hwmon + "/fan1_input", "1300\n"}, {hwmon + "/fan1_max", "6800\n"},
        {hwmon + "/fan15_label", "Fan 1\n"}, {hwmon + "/fan15_input", "1200\n"}};
    AppleSMCDriver driver(fake, "/root");
    EXPECT_EQ(keyNames(driver), "TB0T TW0P F1Ac F1Mx F0Ac ");
    EXPECT_EQ(value(driver, "TB0T"), 31.125);
    EXPECT_EQ(value(driver, "TW0P"), 141.0) << "more than an sp78 holds";
    EXPECT_EQ(value(driver, "F1Mx"), 6800.0);
    EXPECT_EQ(value(driver, "F0Ac"), 1200.0);
}

TEST(AppleSMCDriverTest, MacWithT2ChipHasItsOwnFolder)
{
    FakeDriver fake;
    fake.addApplesmc(
        "/sys/bus/acpi/devices/APP0001:00", {{"TC0P", "sp78", "\x2f\x88"}, {"TB0T", "flt ", "\0\0\xf8\x41"s}});
    AppleSMCDriver driver(fake, "");
    EXPECT_EQ(value(driver, "TB0T"), 31.0);
}

TEST(AppleSMCDriverTest, TellsHowMuchOfTheSMCItIsGiven)
{
    const std::map<std::string, std::string> files{
        {folder + "/temp1_label", "TC0P\n"}, {folder + "/temp1_input", "47500\n"}};
    for (const auto expected : {SMCAccess::none, SMCAccess::files, SMCAccess::refused, SMCAccess::everyKey}) {
        FakeDriver fake;
        if (expected == SMCAccess::refused || expected == SMCAccess::everyKey)
            fake.addApplesmc(folder, {{"TC0P", "sp78", "\x2f\x88"}, {"TC1P", "sp78", "\x30\x10"}});
        if (expected != SMCAccess::none)
            fake.files.insert(files.begin(), files.end());
        fake.isWritable = expected != SMCAccess::refused;
        AppleSMCDriver driver(fake, "");
        EXPECT_EQ(driver.hasSMC(), expected != SMCAccess::none);
        EXPECT_EQ(driver.access(), expected);
    }
}

TEST(AppleSMCDriverTest, FilesOfNewerKernelsLieInHwmon)
{
    for (const auto& device : {folder, "/sys/bus/acpi/devices/APP0001:00"s}) {
        FakeDriver fake;
        const auto hwmon = device + "/hwmon/hwmon" + (device == folder ? "0" : "63");
        fake.files = {{hwmon + "/temp1_label", "TC0P\n"}, {hwmon + "/temp1_input", "47500\n"},
            {hwmon + "/fan1_input", "2157\n"}, {device + "/hwmon/hwmon64/fan2_input", "2100\n"},
            {device + "/fan1_input", "2100\n"}};
        AppleSMCDriver files(fake, "");
        EXPECT_EQ(keyNames(files), "F0Ac TC0P ") << "each key once";
        EXPECT_EQ(value(files, "TC0P"), 47.5);
        fake.addApplesmc(device, {{"TC0P", "sp78", "\x2f\x88"}, {"TC1P", "sp78", "\x30\x10"}});
        AppleSMCDriver indexed(fake, "");
        EXPECT_EQ(value(indexed, "TC0P"), 47.53125);
    }
}

TEST(AppleSMCDriverTest, ComputerWithoutDriverCostsOneLookARefresh)
{
    FakeDriver fake;
    fake.files["/sys/bus/acpi/devices/PNP0C0A:00/hid"] = "";
    AppleSMCDriver driver(fake, "");
    EXPECT_FALSE(driver.hasSMC());
    EXPECT_EQ(value(driver, "#KEY"), std::nullopt);
    for (int refresh = 0; refresh < 3; ++refresh) {
        fake.looks.clear();
        EXPECT_FALSE(driver.hasSMC());
        EXPECT_EQ(fake.looks, std::vector{folder});
    }
}

class LateDriverTest : public testing::Test {
protected:
    bool refresh()
    {
        newKeys = 0;
        return driver.hasSMC();
    }

    FakeDriver fake;
    int newKeys = 0; // how often they were announced in this refresh
    AppleSMCDriver driver{fake, "", [this] { ++newKeys; }};
};

TEST_F(LateDriverTest, IsTakenUpByTheNextRefreshWhereverItAppears)
{
    const std::string acpi = "/sys/bus/acpi/devices";
    const std::string hwmon = "/sys/class/hwmon";
    const struct {
        std::map<std::string, std::string> before;
        std::map<std::string, std::string> files;
        std::string key;
    } cases[]{
        {{}, {{folder + "/temp1_label", "TC0P\n"}, {folder + "/temp1_input", "47500\n"}}, "TC0P"},
        {{{acpi + "/APP0001:00/hid", ""}},
            {{acpi + "/APP0001:00/key_count", ""}, {acpi + "/APP0001:00/fan1_input", "1200\n"}}, "F0Ac"},
        {{}, {{acpi + "/APP0001:00/fan1_input", "1200\n"}}, "F0Ac"},
        {{{hwmon + "/hwmon0/name", "nvme\n"}},
            {{hwmon + "/hwmon1/name", "macsmc_hwmon\n"}, {hwmon + "/hwmon1/fan1_label", "Fan\n"},
                {hwmon + "/hwmon1/fan1_input", "1200\n"}},
            "F0Ac"},
    };
    for (const auto& [before, files, key] : cases) {
        FakeDriver computer;
        computer.files = before;
        int announcements = 0;
        AppleSMCDriver late(computer, "", [&] { ++announcements; });
        ASSERT_FALSE(late.hasSMC());
        ASSERT_FALSE(late.hasSMC());
        announcements = 0;
        computer.files.insert(files.begin(), files.end());
        ASSERT_TRUE(late.hasSMC()) << files.begin()->first;
        EXPECT_EQ(announcements, 1);
        EXPECT_EQ(keyNames(late), key + ' ');
        EXPECT_NE(value(late, key), std::nullopt);
        ASSERT_TRUE(late.hasSMC());
        EXPECT_EQ(announcements, 1) << "the same keys";
    }
}

TEST_F(LateDriverTest, FilesAndGroupThatFollowItsFolderAreTakenUpToo)
{
    fake.files = {{folder + "/name", "applesmc\n"}};
    EXPECT_FALSE(refresh());
    fake.addApplesmc(
        folder, {{"TC0P", "sp78", "\x2f\x88"}, {"TC1P", "sp78", "\x30\x10"}, {"F0Ac", "fpe2", "\x1f\x42"}});
    fake.isWritable = false;
    fake.files[folder + "/temp1_label"] = "TC0P\n";
    fake.files[folder + "/temp1_input"] = "47500\n";
    ASSERT_TRUE(refresh());
    EXPECT_EQ(keyNames(driver), "TC0P ");
    fake.isWritable = true;
    EXPECT_TRUE(refresh());
    EXPECT_EQ(newKeys, 1);
    EXPECT_EQ(keyNames(driver), "TC0P TC1P F0Ac ");
    EXPECT_EQ(value(driver, "TC0P"), 47.53125);
}

TEST_F(LateDriverTest, KeysGoWithItAndComeBack)
{
    const auto number = [](int device) { return folder + "/hwmon/hwmon" + std::to_string(device); };
    fake.files = {{number(2) + "/temp1_label", "TC0P\n"}, {number(2) + "/temp1_input", "47500\n"}};
    ASSERT_TRUE(refresh());
    // Reloaded between two refreshes, and given another number.
    fake.unload();
    fake.files = {{number(5) + "/temp1_label", "TC0P\n"}, {number(5) + "/temp1_input", "50000\n"}};
    fake.load();
    ASSERT_TRUE(refresh());
    EXPECT_EQ(value(driver, "TC0P"), 50.0);
    // Gone for a while: noticed in a reading, told by the next refresh.
    fake.unload();
    ASSERT_TRUE(refresh());
    EXPECT_EQ(value(driver, "TC0P"), std::nullopt);
    EXPECT_EQ(newKeys, 1);
    EXPECT_FALSE(refresh());
    EXPECT_EQ(newKeys, 1);
    fake.load();
    EXPECT_TRUE(refresh());
    EXPECT_EQ(newKeys, 1);
    EXPECT_EQ(value(driver, "TC0P"), 50.0);
}

} // namespace

} // namespace orv
