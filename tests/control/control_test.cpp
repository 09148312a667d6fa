#include "control/control.h"

#include "tests/temporary_folder.h"

#include <cmath>
#include <gtest/gtest.h>
#include <sstream>

namespace {

struct Control : testing::Test {
    std::unique_ptr<control, decltype(&control_free)> registry{control_create("Tindelwax"),
                                                               control_free};
    temporary_folder folder;

    void load(const std::string& text) {
        file_write(folder / "c.ini", text);
        control_load_ini(registry.get(), (folder / "c.ini").c_str());
    }

    /// "name cc channel color key_up key_down type manual default unit", a line a parameter.
    std::string list() const {
        std::ostringstream text;
        EXPECT_EQ(registry->parameters.size(), registry->nb_parameters);
        for (const auto& p : registry->parameters)
            text << p->name << ' ' << p->midi_cc << ' ' << p->midi_channel << ' ' << p->color << ' '
                 << p->key_up << ' ' << p->key_down << ' ' << p->type_name << ' '
                 << static_cast<int>(p->manual) << ' ' << p->default_value << ' ' << p->unit
                 << '\n';
        return text.str();
    }
};

TEST_F(Control, TextsAreReadByTheRules) {
    const struct {
        const char* text;
        const char* list;
    } rows[] = {
        {"[organ]\nname=A\n[control\nname=A\n", ""},
        {"[control]\nname=A\ncc=80\nchannel=1\ncolor=31\nkey_up=a\nkey_down=q\ntype=stop\n"
         "manual=0\ndefault=1.0\nunit=bin\n",
         "A 80 1 31 a q stop 0 1 bin\n"},
        {"[control]\ncc=5\ndefault=1\nname=A\n", "A 0 0 0 ! ! ! -1 0 !\n"},
        {"[Control]\nNAME=A\nCc=12\nDEFAULT=.25\n", "A 12 0 0 ! ! ! -1 0.25 !\n"},
        {"[control]\nname=A\nsize=9\ncc=1\ncc=2\nname=B\ncc=x\nchannel= +3x\n",
         "A 2 0 0 ! ! ! -1 0 !\nB 0 3 0 ! ! ! -1 0 !\n"},
        {"[control]\nname=A\n B\ncc=4\n", "A 0 0 0 ! ! ! -1 0 !\nB 4 0 0 ! ! ! -1 0 !\n"},
        {"[control]\nname=A\ndefault=1.\nname=B\ndefault=+5e-1x\nname=C\ndefault=-1\n"
         "name=D\ndefault=x\nname=E\ndefault=0,5\n",
         "A 0 0 0 ! ! ! -1 1 !\nB 0 0 0 ! ! ! -1 0.5 !\nC 0 0 0 ! ! ! -1 -1 !\n"
         "D 0 0 0 ! ! ! -1 0 !\nE 0 0 0 ! ! ! -1 0 !\n"},
        {"[control]\nname=\nkey_up=\nunit=% ; percent\n", " 0 0 0  ! ! -1 0 %\n"},
    };
    for (const auto& row : rows) {
        registry.reset(control_create("Tindelwax"));
        load(row.text);
        EXPECT_EQ(list(), row.list) << row.text;
    }
}

TEST_F(Control, ParametersAndConfigsBeyond256AreIgnored) {
    std::string text = "[control]\n";
    for (int i = 0; i < 300; ++i)
        text += "name=p" + std::to_string(i) + "\ncc=" + std::to_string(i) + "\n";
    load(text);
    for (int i = 0; i < 300; ++i)
        control_add_config(registry.get(), "control", "c", 0);
    EXPECT_EQ(registry->nb_parameters, 256u);
    EXPECT_EQ(registry->nb_configs, 256u);
    EXPECT_EQ(control_find_parameter(registry.get(), "p256"), -1);
    EXPECT_EQ(control_find_parameter(registry.get(), "p255"), 255);
    EXPECT_EQ(control_find_parameter(registry.get(), "P255"), -1);
    EXPECT_EQ(registry->parameters[255]->midi_cc, 255u) << "what follows describes no parameter";
}

TEST_F(Control, FiniteValuesGoToThePointerBeforeTheHandlers) {
    control_add_parameter(registry.get(), "p");
    parameter& param = *registry->parameters[0];
    control_set_parameter(registry.get(), 0, 0.5f);
    EXPECT_EQ(control_get_parameter(registry.get(), 0), 0.0f) << "unbound";

    float handled = 0.25f;
    param.get_parameter_value = [&] { return handled; };
    param.set_parameter_value = [&](float value) { handled = value; };
    control_set_parameter(registry.get(), 0, 0.75f);
    EXPECT_EQ(control_get_parameter(registry.get(), 0), 0.75f);

    std::atomic<float> bound = 0.125f;
    param.value = &bound;
    control_set_parameter(registry.get(), 0, 1.0f);
    for (float unfit : {std::nanf(""), HUGE_VALF, -HUGE_VALF})
        control_set_parameter(registry.get(), 0, unfit);
    EXPECT_EQ(control_get_parameter(registry.get(), 0), 1.0f);
    EXPECT_EQ(handled, 0.75f);
}

} // namespace
