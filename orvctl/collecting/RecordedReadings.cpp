#include "orvctl/collecting/RecordedReadings.h"

#include "orvctl/collecting/Playback.h"
#include "service/OrvSMCHelperServer.h"

#include <optional>

namespace orv {

bool readRecording(const std::string& path, RecordedReadingsReader& reader, std::string& fault)
{
    constexpr double interval = OrvSMCHelperServer::reloadInterval.count();
    std::optional<WatchedReplies> first; // of before the reader knows the recording
    bool isWanted = true;
    const auto playback = Playback::open(
        {path},
        [&](const WatchedReplies& replies, double at) {
            if (!first)
                first = replies;
            else if (isWanted)
                isWanted = reader.heard(replies, at);
        },
        fault);
    if (!playback)
        return false;
    fault = reader.opened(playback->machine(), playback->length());
    if (!fault.empty()) {
        fault = path + ": " + fault;
        return false;
    }
    isWanted = reader.heard(*first, 0);
    for (double at = 0; isWanted && at < playback->length();)
        playback->playTo(at += interval);
    return true;
}

} // namespace orv
