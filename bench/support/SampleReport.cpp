#include "bench/support/SampleReport.h"

namespace orv {

namespace {

std::string device(std::size_t number)
{
    const auto text = std::to_string(number);
    return R"({"Device )" + text + R"(": {"device_address": "AA:BB:CC:00:00:)" + text
        + R"(", "device_batteryLevelMain": "85%", "device_firmwareVersion": "1.2.3", "device_minorType": "Keyboard",)"
        + R"( "device_productID": "0x0267", "device_rssi": "-54", "device_services": "0x800020 < HID ACL >",)"
        + R"( "device_vendorID": "0x004C"}})";
}

} // namespace

std::string sampleReport(std::size_t bytes)
{
    std::string text = R"({"SPBluetoothDataType": [{"controller_properties": {"controller_state": "attrib_on"}, )"
                       R"("device_connected": [)";
    for (std::size_t number = 0; text.size() < bytes; ++number) {
        text += number == 0 ? "" : ", ";
        text += device(number);
    }
    text += "]}]}";
    return text;
}

} // namespace orv
