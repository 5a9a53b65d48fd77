#include "explain/Verdict.h"

#include <cstddef>

namespace orv {

constexpr std::array<VerdictText, 30> verdictTexts{{
    {Verdict::shown, "shown", "shown"},
    {Verdict::belowThreshold, "below-threshold", "reads too low to count"},
    {Verdict::noNumber, "no-number", "its type holds no number here"},
    {Verdict::wrongSize, "wrong-size", "its size does not fit its type"},
    {Verdict::negative, "negative", "a negative number, which counts as none"},
    {Verdict::empty, "empty", "the SMC says that it has 0 bytes"},
    {Verdict::exchangeFailed, "exchange-failed", "the SMC refused to read it"},
    {Verdict::notInCatalogue, "not-in-catalogue", "not in the catalogue of this kind of Mac"},
    {Verdict::titleTaken, "title-taken", "another key has its title"},
    {Verdict::beyondCoreCount, "beyond-core-count", "more cores than this Mac has"},
    {Verdict::leftOutOnChip, "left-out-on-chip", "left out on this chip"},
    {Verdict::otherSource, "other-source", "another source of the same key won"},
    {Verdict::notListed, "not-listed", "in the catalogue, but this Mac does not have it"},
    {Verdict::fanLimit, "fan-limit", "a limit of a shown fan"},
    {Verdict::fanIndex, "fan-index", "a sixteenth fan, and fifteen are read"},
    {Verdict::noFan, "no-fan", "no speed of a fan that is read"},
    {Verdict::noLocation, "no-location", "no usable location, so no code"},
    {Verdict::noEvent, "no-event", "no temperature event"},
    {Verdict::notConnected, "not-connected", "not among the connected devices"},
    {Verdict::spoiltList, "spoilt-list", "an element that is no object spoils the whole list"},
    {Verdict::notADevice, "not-a-device", "not a name with properties"},
    {Verdict::notText, "not-text", "a property that is no text spoils the device"},
    {Verdict::noAddress, "no-address", "no address"},
    {Verdict::noLevel, "no-level", "connected, but reports no battery level"},
    {Verdict::noCompanion, "no-companion", "no companion application, so no watch is looked for"},
    {Verdict::noContainer, "no-container", "no folder shared with the companion"},
    {Verdict::noFile, "no-file", "no watch file that can be read (of at most 1 MiB)"},
    {Verdict::notJSON, "not-json", "the watch file is not JSON"},
    {Verdict::notObjects, "not-objects", "the watch file is not an object of objects"},
    {Verdict::nullLeftOut, "null-left-out", "a null, which a reply cannot hold"},
}};

namespace {

constexpr bool rowsFollowTheEnumeration()
{
    for (std::size_t row = 0; row < verdictTexts.size(); ++row) {
        if (static_cast<std::size_t>(verdictTexts[row].verdict) != row || verdictTexts[row].text.empty())
            return false;
    }
    return true;
}

static_assert(rowsFollowTheEnumeration());

} // namespace

std::string_view identifierOf(Verdict verdict)
{
    return verdictTexts[static_cast<std::size_t>(verdict)].identifier;
}

std::string_view textOf(Verdict verdict)
{
    return verdictTexts[static_cast<std::size_t>(verdict)].text;
}

} // namespace orv
