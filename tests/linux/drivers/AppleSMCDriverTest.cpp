#include "linux/drivers/AppleSMCDriver.h"

#include "linux/drivers/AttributeText.h"
#include "smc/FourCharCode.h"
#include "smc/SMCValueDecoding.h"
#include "tests/support/FakeDriver.h"

#include <gtest/gtest.h>

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
}

TEST_F(IndexedKeysTest, ReadIsRepeatedWhenAnotherProcessMovedTheIndex)
{
    ASSERT_TRUE(driver.hasSMC());
    for (std::size_t disturbances = 0; disturbances <= 4; ++disturbances) {
        auto left = disturbances;
        fake.dataReads.clear();
        fake.afterWrite = [&] {
            if (left > 0)
                --left, fake.index = 2;
        };
        EXPECT_EQ(value(driver, "TC0P"), disturbances < 4 ? std::optional(47.53125) : std::nullopt) << disturbances;
        EXPECT_EQ(fake.dataReads.size(), std::min<std::size_t>(disturbances + 1, 4));
    }
}

TEST_F(IndexedKeysTest, WalkSurvivesAnotherProcess)
{
    int writes = 0;
    fake.afterWrite = [&] {
        if (++writes % 2 == 1)
            fake.index = 3;
    };
    EXPECT_EQ(keyNames(driver), "#KEY TC0P TC1P F0Ac MSSD ");
}

TEST_F(IndexedKeysTest, UnreadableKeyCostsNoOther)
{
    fake.keys[1].isUnreadable = true;
    EXPECT_EQ(value(driver, "TC0P"), std::nullopt);
    EXPECT_EQ(value(driver, "TC1P"), 48.0625);
    EXPECT_EQ(fake.dataReads.size(), 2u) << "an error of the right key is final";
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
    for (int round = 0; round < 3; ++round)
        EXPECT_EQ(value(driver, "TC0P"), 47.53125);
    EXPECT_LE(fake.openDescriptors(), descriptors);
}

TEST_F(IndexedKeysTest, KeysThatWentAwayAreAbsent)
{
    ASSERT_TRUE(driver.hasSMC());
    fake.keys.resize(2);
    EXPECT_EQ(value(driver, "TC1P"), std::nullopt);
    fake.keys[1].bytes = "\x2f";
    EXPECT_EQ(value(driver, "TC0P"), std::nullopt) << "half a value is none";
}

TEST_F(IndexedKeysTest, AbsurdKeyCountsAreNotWalked)
{
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
            {folder + "/temp9_label", "TB0T\n"}, {folder + "/temp9_input", "30250\n"},
            {folder + "/fan1_input", "2157\n"}, {folder + "/fan1_min", "2160\n"}, {folder + "/fan2_input", "0\n"}};
    }

    FakeDriver fake;
    AppleSMCDriver driver{fake, ""};
};

TEST_F(SensorFilesTest, FilesServeWhatTheyHave)
{
    EXPECT_EQ(keyNames(driver), "TC0P TC1P TB0T F0Ac F0Mn F1Ac ");
    EXPECT_EQ(value(driver, "#KEY"), 6.0);
    EXPECT_EQ(value(driver, "TC0P"), 47.5);
    EXPECT_EQ(value(driver, "TC1P"), std::nullopt);
    EXPECT_EQ(value(driver, "TB0T"), 30.25);
    EXPECT_EQ(value(driver, "F0Ac"), 2157.0);
    EXPECT_EQ(value(driver, "F0Mx"), std::nullopt);
}

TEST_F(SensorFilesTest, NumbersNoSensorReadsAreClampedOrAbsent)
{
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
    EXPECT_EQ(fake.openDescriptors(), 1u);
    fake.unload();
    EXPECT_EQ(value(driver, "TC0P"), std::nullopt);
    fake.load();
    EXPECT_EQ(value(driver, "TC0P"), 47.5);
    EXPECT_EQ(fake.openDescriptors(), 1u);
}

TEST(MacsmcTest, LabelsStandForKeys)
{
    FakeDriver fake;
    const std::string hwmon = "/root/sys/class/hwmon/hwmon3";
    fake.files = {{"/root/sys/class/hwmon/hwmon1/name", "nvme\n"}, {hwmon + "/name", "macsmc_hwmon\n"},
        {hwmon + "/temp1_label", "NAND Flash Temperature\n"}, {hwmon + "/temp1_input", "40000\n"},
        {hwmon + "/temp2_label", "Battery Hotspot\n"}, {hwmon + "/temp2_input", "31125\n"},
        {hwmon + "/temp3_label", "WiFi/BT Module Temp\n"}, {hwmon + "/temp3_input", "141000\n"},
        {hwmon + "/fan1_label", "Fan 2\n"}, {hwmon + "/fan1_input", "1300\n"}, {hwmon + "/fan1_max", "6800\n"},
        {hwmon + "/fan2_label", "Fan 1\n"}, {hwmon + "/fan2_input", "1200\n"}};
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

TEST(AppleSMCDriverTest, ComputerWithoutDriverHasNoSMC)
{
    FakeDriver fake;
    AppleSMCDriver driver(fake, "");
    EXPECT_FALSE(driver.hasSMC());
    EXPECT_EQ(value(driver, "#KEY"), std::nullopt);
}

} // namespace

} // namespace orv
