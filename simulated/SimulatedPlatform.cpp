#include "simulated/SimulatedPlatform.h"

namespace orv {

void SimulatedPlatform::apply(const RecordingStep& step)
{
    mac.apply(step);
    if (step.profilerOutput)
        profilerOutput = *step.profilerOutput;
    if (step.watchFile)
        bundle.setWatchFile(*step.watchFile);
}

void SimulatedPlatform::announce(RecordedEvent event)
{
    switch (event) {
    case RecordedEvent::sleep:
        return workspace.sleep();
    case RecordedEvent::wake:
        return workspace.wake();
    case RecordedEvent::connect:
        return bluetoothEvents.connectDevice();
    case RecordedEvent::pair:
        return bluetoothEvents.changePairing();
    }
}

} // namespace orv
