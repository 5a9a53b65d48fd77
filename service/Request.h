#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace orv {

class OrvSMCHelperServer;
class ReplySink;
struct ReplyLimits;

/// What a client may ask. None is ever added: the two are a protocol of which clients carry copies.
enum class Request : std::uint8_t { thermal, bluetooth };

struct RequestRow {
    Request request;
    const char* method; // kept: clients call it letter for letter
};

/// One row a request, in the order of Request.
inline constexpr std::array<RequestRow, 2> requests{{
    {Request::thermal, "getModelDatawithReply"},
    {Request::bluetooth, "getBTDataWithReply"},
}};

static_assert(requests[0].request == Request{0} && requests[1].request == Request{1});

constexpr const char* methodOf(Request request)
{
    return requests[static_cast<std::size_t>(request)].method;
}

/// The reply of the server's latest readings, as far as a transport of these limits carries it. Any thread.
void writeReply(Request request, const OrvSMCHelperServer& server, ReplySink& sink, const ReplyLimits& limits);

} // namespace orv
