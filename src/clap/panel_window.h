#pragma once
/// The panel in the host's window, and what it tells the host of. All is [ui].

#include "clap/interface.h"
#include "instrument_panel/instrument_panel.h"

struct clap_instrument;

class clap_panel_window final : public instrument_panel {
public:
    explicit clap_panel_window(clap_instrument& shown);
    ~clap_panel_window();

    void set_parent(void* window) { parent = window; }
    bool show(); ///< returns whether the parent's display shows it
    void hide();

    void beginEdit(int index) override;
    void endEdit(int index) override;

private:
    void parameterMoved(int index, float value) override;
    void tell(clap_event_type type, int index, float value = 0);

    clap_instrument& instrument;
    void* parent = nullptr;
    clap_id timer = CLAP_INVALID_ID;
};

extern const clap_plugin_gui clap_gui;
extern const clap_plugin_timer_support clap_timer;
