#pragma once

namespace orv {

/// What is refreshed, each at its own pace.
enum class Refreshed {
    readings, // what a request is answered with
    bluetoothReport, // a delivery to the readings, which show it from their next refresh on
    watchFile, // likewise
};

/// Told when a refresh begins and when what it found is in its place. Called on the main thread; can change nothing.
class RefreshObserver {
public:
    virtual ~RefreshObserver() = default;

    virtual void refreshBegan(Refreshed what) = 0;
    /// Not called for a refresh that never ends, or ends with nothing new.
    virtual void refreshEnded(Refreshed what) = 0;
};

} // namespace orv
