#pragma once

namespace orv {

class HeldComplaints;

/// From here on a fault of the program, or an alarm, gives the terminal back before it ends it, and says what there is
/// to be said. To be called when the screen has been taken over; it gives back the modes of before, which are
/// remembered by `rememberTerminal`.
void rememberTerminal();
void restoreTerminalAtFaults(HeldComplaints& complaints);
/// The terminal is given back otherwise.
void forgetTerminal();

} // namespace orv
