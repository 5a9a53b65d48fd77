// usage: bench-instructions NAME
// Does one piece of work, between whose first and last instruction valgrind counts (scripts/bench instructions).

#include "bench/support/SampleReport.h"
#include "bluetooth/SystemProfilerReport.h"

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

void countTwice(const std::function<void()>& work)
{
    work(); // the first time is not like the others: pages and lazily bound names
    counted(work);
}

void reportReader()
{
    const auto text = sampleReport(20'000);
    countTwice([&] { parseBluetoothReport(text); });
}

void documentOfReport()
{
    const auto text = sampleReport(20'000);
    countTwice([&] { const auto document = nlohmann::json::parse(text); });
}

} // namespace

int main(int argumentCount, char** arguments)
{
    const std::string_view name = argumentCount == 2 ? arguments[1] : "";
    if (name == "reportReader")
        reportReader();
    else if (name == "documentOfReport")
        documentOfReport();
    else
        return std::fputs("usage: bench-instructions NAME\n", stderr), 2;
    return 0;
}
