#include "bench/support/CatalogueMac.h"

#include "simulated/MachineFile.h"
#include "smc/Fans.h"
#include "smc/FourCharCode.h"
#include "thermal/Orv_SMCProfileKeys.h"
#include "json/JSONWriter.h"

#include <cstdint>
#include <cstdio>
#include <set>
#include <string_view>
#include <utility>

namespace orv {

namespace {

Value row(std::string key, const char* type, Value bytes)
{
    return Dictionary({{"key", std::move(key)}, {"type", std::string(type)}, {"bytes", std::move(bytes)}});
}

Array steps()
{
    Array texts;
    for (const char digit : std::string_view("3456"))
        texts.push_back(std::string{digit, '0', '0', '0'});
    return texts;
}

void addTemperatures(Array& rows, std::size_t count, bool stepping)
{
    std::set<std::string_view> titles;
    for (const auto& sensor : Orv_SMCProfileKeys::intelSensorKeys.rows) {
        if (titles.size() == count || std::string_view(sensor.key).size() != 4 || !titles.insert(sensor.name).second)
            continue;
        rows.push_back(row(std::string(sensor.key), "sp78", stepping ? Value(steps()) : Value(std::string("2f80"))));
    }
}

void addFans(Array& rows, std::size_t count)
{
    using namespace Orv_SMCHelper;
    for (std::int64_t index = 0; index < static_cast<std::int64_t>(count); ++index) {
        for (const auto& [speed, bytes] :
            {std::pair{actualSpeed, "12c0"}, {minimumSpeed, "0fa0"}, {maximumSpeed, "4e20"}})
            rows.push_back(row(fanKey(index, speed), "fpe2", std::string(bytes)));
    }
}

void addOtherKeys(Array& rows, std::size_t count)
{
    for (std::size_t index = 0; index < count; ++index) {
        char key[8];
        std::snprintf(key, sizeof(key), "X%03x", static_cast<unsigned>(index & 0xFFF));
        rows.push_back(row(key, "ui8 ", std::string("01")));
    }
}

} // namespace

std::string CatalogueMac::text() const
{
    Array rows;
    addOtherKeys(rows, otherKeys);
    addTemperatures(rows, temperatures, stepping);
    addFans(rows, fans);
    const Dictionary systemValues(
        {{"hw.model", std::string("iMac18,3")}, {"machdep.cpu.brand_string", std::string("Intel(R) Core(TM) i5")}});
    const Dictionary machine({{"sysctl", systemValues}, {"exchangeDelay", exchangeDelay}, {"smc", std::move(rows)}});
    return writeJSON(machine, KeyOrder::asListed);
}

std::vector<std::string> CatalogueMac::keys() const
{
    std::string fault;
    const auto machine = *parseMachine(text(), fault);
    std::vector<std::string> keys;
    for (const auto& row : *machine.smc)
        keys.push_back(fourCharString(row.key));
    return keys;
}

} // namespace orv
