#include "recording/Session.h"

#include "tests/support/TestMac.h"

#include <gtest/gtest.h>

#include <string>

using namespace orv;

TEST(RecordingSession, IsFinishedOnceItsPlanIs)
{
    struct Case {
        std::optional<double> length;
        double stopAt;
        double reportAt; // when the profiler has ended
        double end;
        const char* last; // how its text ends
    };
    const Case cases[]{{12, 99, 1, 12, "{\"at\":12}\n"}, {12, 3, 1, 3, "{\"at\":3}\n"},
        {{}, 99, 4, 4, "\"bluetooth\": {}\n}\n"}, {{}, 3, 99, 3, "\"bluetooth\": \"\"\n}\n{\"at\":3}\n"}};
    for (const auto& each : cases) {
        TestMac mac(intelText(R"({"key": "TC0P", "type": "sp78", "bytes": "2f80"})"));
        const auto now = [&mac] { return Seconds(mac.runLoop.now).count(); };
        std::string text;
        int finished = 0;
        RecordingSession session(mac.simulation.platform, {[&](const std::string& more) { text += more; }, now},
            {each.length, 5, [&](double reached) { return reached >= each.stopAt; }}, [&] { ++finished; });
        session.begin();
        for (int tenths = 0; tenths < 300 && finished == 0; ++tenths) {
            if (now() >= each.reportAt && !mac.launcher.running.empty())
                mac.launcher.finish("{}");
            mac.runLoop.advance(Seconds(0.1));
        }
        EXPECT_GE(now(), each.end) << each.last;
        EXPECT_LT(now(), each.end + 0.5) << each.last;
        EXPECT_TRUE(text.ends_with(each.last)) << text;
        mac.runLoop.advance(Seconds(30));
        EXPECT_EQ(finished, 1);
    }
}
