#pragma once

#include "orvctl/screen/HeldOutput.h"
#include "orvctl/top/Top.h"

#include <optional>
#include <vector>

namespace orv {

/// The whole terminal, as long as it lives. Draws frames, sends what is different, and takes keys. One at a time.
class Screen {
public:
    explicit Screen(bool hasColour);
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    ScreenSize size() const { return shownSize; }
    void show(Frame&& frame);
    /// A key that was pressed; nothing when none waits.
    std::optional<KeyPress> nextKey();

    /// Takes over the terminal's size. What was shown is sent again with the next frame.
    void resize();
    /// Sends everything again with the next frame.
    void redraw();
    /// Gives the terminal back, and takes it again.
    void leave();
    void enter();

private:
    void chooseColours(bool hasColour);
    void showLine(std::size_t row, const StyledLine& line);

    HeldOutput output;
    ScreenSize shownSize;
    std::vector<StyledLine> shown;
    std::vector<unsigned long> attributes; // by style
};

} // namespace orv
