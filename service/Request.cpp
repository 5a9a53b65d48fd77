#include "service/Request.h"

#include "service/OrvSMCHelperServer.h"
#include "service/Replies.h"

namespace orv {

void writeReply(Request request, const OrvSMCHelperServer& server, ReplySink& sink, const ReplyLimits& limits)
{
    switch (request) {
    case Request::thermal:
        return writeThermalReply(*server.smcData.take(), sink);
    case Request::bluetooth:
        return writeBluetoothReply(*server.btData.take(), sink, limits);
    }
}

} // namespace orv
