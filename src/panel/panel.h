#pragma once
/// The instrument's panel, for whatever plug-in format shows it: it turns the user's gestures into
/// changes that its owner carries out, and shows the changes that come from elsewhere.
///
/// Parameters may move on [any] thread: their values wait in slots, which live as long as the
/// panel, until it is idle. The panel comes and goes in [setup]; all else is [ui].

#include "panel/value_slot.h"
#include "realtime/nonblocking.h"
#include "vstgui/cbitmap.h"
#include "vstgui/ccontrollistener.h"
#include "vstgui/cframe.h"
#include "vstgui/cframeowner.h"

#include <vector>

class CControl;
class CMovieBitmap;
class COnOffButton;
struct control;

/// The plug-in, as its panel knows it. In each of these but the last the host may get a turn, and
/// end the panel.
class PanelOwner {
public:
    virtual void beginEdit(int index) = 0; ///< the user took a parameter's control
    virtual void endEdit(int index) = 0;   ///< and let it go

    /// The user moved a control: a parameter's, or an action's (see panel/tags.h).
    virtual void controlMoved(int tag, float value) = 0;

    virtual void giveTurn() = 0; ///< to the host, in the middle of a gesture

    virtual bool takeMidiActivity() = 0; ///< whether messages have come since the last time

protected:
    ~PanelOwner() = default;
};

class Panel final : public CFrameOwner, public CControlListener {
public:
    /// Owner and registry outlive it.
    Panel(PanelOwner& owner, control& registry);
    ~Panel();
    Panel(const Panel&) = delete;
    Panel& operator=(const Panel&) = delete;

    /// The environment says how large the panel is until a host does; it takes the size nearest to
    /// that and keeps it while it is open. Returns whether it has it.
    bool setScale(double wanted);

    [[nodiscard]] int getWidth() const;
    [[nodiscard]] int getHeight() const;

    /// Returns whether it can be shown in the host's window `parent`. Knobs turn in circles until
    /// another mode is set.
    bool open(void* parent);
    void close(); ///< where that ends a gesture, the host may end the panel
    [[nodiscard]] bool isOpen() const { return bool(frame); }
    [[nodiscard]] void* getHandle() const { return frame->getHandle(); } ///< of its window, open

    /// Takes what has changed and redraws, unless it is already about it.
    void idle();
    bool onWheel(float distance) { return frame && frame->onWheel(distance); }
    void setKnobMode(CKnobMode mode) { knobMode = mode; }

    /// Shows another registry with the same parameters, which outlives the panel from now on.
    void setRegistry(control& another);

    /// A parameter's value, which is shown when the panel is idle. [any]
    void showParameter(int index, float value) noexcept NONBLOCKING;

    /// Arms the instrument to learn a controller for the parameter that was moved last, or gives
    /// up.
    void toggleMidiLearn();

    [[nodiscard]] bool isParameter(int index) const noexcept NONBLOCKING;

    void beginEdit(int tag) override;
    void endEdit(int tag) override;
    void doIdleStuff() override;
    void valueChanged(CDrawContext* context, CControl* changed) override;

private:
    template <typename Turn>
    void takeTurn(Turn turn);
    void showParameters();
    void takeChanges();
    void showMidiLearn();

    PanelOwner& owner;
    control* registry;
    CReference<CBitmap> hBackground;
    CReference<CFrame> frame{}; ///< null while closed
    /// One for each parameter, null where the panel has none; all controls are the frame's.
    std::vector<CControl*> controls{};
    COnOffButton* cMidiLearnButton = nullptr;
    CMovieBitmap* cMidiInLED = nullptr;
    std::vector<ValueSlot> changes; ///< one for each parameter
    bool midi_learn_active = false; ///< armed here, and not yet seen to have ended
    bool inTurn = false;            ///< a gesture is under way that let the host have a turn
};
