#pragma once

#include "service/Watching.h"

#include <string>

namespace orv {

/// Watches the Mac of a machine file, which this process refreshes as the service would, in real time. Otherwise as
/// watchService; the line is about the file.
std::string watchSimulatedMac(const std::string& machinePath, ServiceWatcher& watcher, int output);

/// Removes what a watched Mac keeps on the disk. Any thread; for a program that ends meanwhile.
void cleanAfterSimulatedMac();

} // namespace orv
