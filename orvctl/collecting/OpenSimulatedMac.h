#pragma once

#include "orvctl/collecting/SimulatedClient.h"
#include "simulated/RecordedMac.h"

#include <memory>
#include <string>

namespace orv {

/// The Mac of a file as it is at a moment, with nothing of the service around it. Says on standard error when the file
/// was cut off. Nothing when the file cannot be used or ends before the moment; `fault` then is one line.
std::unique_ptr<RecordedMac> openSimulatedMac(const SimulatedMoment& moment, std::string& fault);

/// One line for a moment that lies after a recording's end.
std::string beyondTheEnd(const std::string& path, double length);

} // namespace orv
