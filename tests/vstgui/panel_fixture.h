#pragma once
/// A small panel on the headless system: a knob, two switches that share a column of pixels, a
/// button and a display. What its controls tell is written down as text.

#include "tests/vst/recording.h"
#include "vst/editor/aeffguieditor.h"
#include "vstgui/canimknob.h"
#include "vstgui/ckickbutton.h"
#include "vstgui/cmoviebitmap.h"
#include "vstgui/conoffbutton.h"
#include "vstgui/window_headless.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>

enum panel_tag : int { knob_tag, left_tag, right_tag, button_tag, display_tag };

class PanelEditor final : public AEffGUIEditor, public CControlListener {
public:
    using AEffGUIEditor::AEffGUIEditor;
    ~PanelEditor() override { PanelEditor::close(); }

    bool open(void* parent) override {
        auto opened = CReference<CFrame>::make(CRect{0, 0, 480, 400}, parent, this);
        if (!opened->isOpen())
            return false;
        opened->setBackground(bitmap(128).get());
        add<CAnimKnob>(*opened, CRect{100, 100, 152, 151}, knob_tag, 32, 51, bitmap(150));
        add<COnOffButton>(*opened, CRect{200, 100, 257, 228}, left_tag, bitmap(155));
        add<COnOffButton>(*opened, CRect{256, 100, 313, 228}, right_tag, bitmap(156));
        add<CKickButton>(*opened, CRect{350, 100, 384, 136}, button_tag, 36, bitmap(132));
        add<CMovieBitmap>(*opened, CRect{400, 100, 434, 136}, display_tag, 2, 36, bitmap(130));
        systemWindow = parent;
        frame = opened;
        return true;
    }

    void beginEdit(VstInt32 index) override { note("begin", index); }
    void endEdit(VstInt32 index) override { note("end", index); }
    void doIdleStuff() override {
        note("pump");
        AEffGUIEditor::doIdleStuff();
    }
    void valueChanged(CDrawContext*, CControl* changed) override {
        note("change", changed->getTag(), changed->getValue());
    }
    int controlModifierClicked(CDrawContext*, CControl* clicked, int button) override {
        if (takes_modifiers)
            note("modifier", clicked->getTag(), button);
        return takes_modifiers;
    }

    template <typename... Arguments>
    void note(const char* name, Arguments... arguments) {
        log.note(name, arguments...);
        if (at_call)
            at_call();
    }

    CControl* controls[5] = {};
    call_log log{};
    std::function<void()> at_call{}; ///< what the host does whenever it is told something
    bool takes_modifiers = false;

private:
    static CReference<CBitmap> bitmap(int number) { return CReference<CBitmap>::make(number); }

    template <typename Control, typename... Rest>
    void add(CFrame& panel, const CRect& area, int tag, Rest... rest) {
        auto created = std::make_unique<Control>(area, this, tag, raw(rest)...);
        controls[tag] = created.get();
        panel.addView(std::move(created));
    }
    static int raw(int number) { return number; }
    static CBitmap* raw(const CReference<CBitmap>& shared) { return shared.get(); }
};

struct PanelTest : testing::Test {
    PanelTest() { EXPECT_TRUE(editor.open(&host)); }

    void press(CPoint where, int keys = 0) { host.listener->onMouseDown(where, kLButton | keys); }
    void move(CPoint where, int keys = 0) { host.listener->onMouseMoved(where, keys); }
    void release(CPoint where) { host.listener->onMouseUp(where, kLButton); }

    /// What was told since the last time.
    std::string told() { return std::exchange(editor.log.calls, ""); }

    default_effect effect{};
    headless_parent host{};
    PanelEditor& editor = *new PanelEditor(&effect); ///< the effect's
};
