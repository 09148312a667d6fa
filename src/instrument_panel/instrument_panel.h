#pragma once
/// The panel of an instrument, for the formats that hold one: it shows what has moved elsewhere,
/// and carries out what the user does. What the host is told of that is each format's. All is [ui].

#include "instrument/instrument.h"
#include "panel/panel.h"

#include <vector>

class instrument_panel : public PanelOwner {
public:
    explicit instrument_panel(instrument& shown); ///< which outlives it

    /// What the host says of its screen; returns whether the panel has that size or the nearest.
    bool set_scale(double wanted) { return panel.setScale(wanted); }

    [[nodiscard]] int width() const { return panel.getWidth(); }
    [[nodiscard]] int height() const { return panel.getHeight(); }
    [[nodiscard]] bool is_open() const { return panel.isOpen(); }
    [[nodiscard]] void* handle() const { return panel.getHandle(); } ///< of its window, while open

    /// Returns whether it can be shown in the host's window.
    bool open(void* parent);

    /// What derives from this closes in its own destructor, while it can still hear of a gesture's
    /// end.
    void close() { panel.close(); }

    /// Takes what has changed elsewhere, and redraws; some 30 times a second.
    void idle();

    void controlMoved(int tag, float value) final;
    void giveTurn() final {}
    bool takeMidiActivity() final;

protected:
    ~instrument_panel() = default;

    /// The user has moved a parameter, and it has moved.
    virtual void parameterMoved(int index, float value) = 0;

private:
    void follow();

    instrument& played;
    control* registry; ///< that the panel shows, of a player that may be gone
    Panel panel;
    std::vector<float> values; ///< by parameter: where the panel has it
};
