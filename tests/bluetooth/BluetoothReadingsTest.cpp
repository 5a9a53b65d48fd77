#include "bluetooth/BluetoothReadings.h"

#include <gtest/gtest.h>

using namespace orv;

TEST(BluetoothReadings, KeepTheProfilersEntryWholeWhereBothKnowADevice)
{
    const Dictionary measured({{"batteryLevelLeft", std::int64_t{5}}});
    const Dictionary written({{"batteryLevel", std::int64_t{1}}});
    EXPECT_EQ(bluetoothReadings({{"both", measured}, {"device", measured}}, {{"both", written}, {"watch", written}}),
        (BluetoothBatteryDictionary{{"both", measured}, {"device", measured}, {"watch", written}}));
}
