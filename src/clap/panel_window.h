#pragma once
/// The panel in the host's window, and what it tells the host of. All is [ui].

#include "clap/interface.h"
#include "panel/panel.h"

#include <vector>

struct clap_instrument;

class clap_panel_window final : public PanelOwner {
public:
    explicit clap_panel_window(clap_instrument& shown);
    ~clap_panel_window();

    [[nodiscard]] const Panel& get_panel() const { return panel; }

    void set_parent(void* window) { parent = window; }
    bool show(); ///< returns whether the parent's display shows it
    void hide();

    /// Takes what has changed elsewhere, and redraws; some 30 times a second.
    void idle();

    /// The instrument plays anew.
    void follow();

    void beginEdit(int index) override;
    void endEdit(int index) override;
    void controlMoved(int tag, float value) override;
    void giveTurn() override {}
    bool takeMidiActivity() override;

private:
    void tell(clap_event_type type, int index, float value = 0);

    clap_instrument& instrument;
    Panel panel;
    std::vector<float> values; ///< by parameter: where the panel has it
    void* parent = nullptr;
    clap_id timer = CLAP_INVALID_ID;
};

extern const clap_plugin_gui clap_gui;
extern const clap_plugin_timer_support clap_timer;
