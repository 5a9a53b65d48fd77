#pragma once

namespace orv {

/// Lets every thread that is started from now on have a stack too small for a transparent huge page, of which it would
/// use a hundredth.
void keepThreadStacksSmall();

} // namespace orv
