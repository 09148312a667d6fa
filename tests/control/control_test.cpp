#include "control/control.h"

#include "tests/temporary_folder.h"

#include <gtest/gtest.h>
#include <memory>
#include <sstream>

namespace {

using control_ptr = std::unique_ptr<control, decltype(&control_free)>;

control_ptr load(const std::string& text) {
    const temporary_folder folder;
    file_write(folder / "c.ini", text);
    control_ptr registry{control_create("Tindelwax"), control_free};
    control_load_ini(registry.get(), (folder / "c.ini").c_str());
    return registry;
}

TEST(Control, TextsAreReadByTheRules) {
    const struct {
        const char* text;
        const char* list; ///< name cc channel color key_up key_down type manual default unit
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
        std::ostringstream list;
        const control_ptr registry = load(row.text);
        for (const auto& p : registry->parameters)
            list << p->name << ' ' << p->midi_cc << ' ' << p->midi_channel << ' ' << p->color << ' '
                 << p->key_up << ' ' << p->key_down << ' ' << p->type_name << ' '
                 << static_cast<int>(p->manual) << ' ' << p->default_value << ' ' << p->unit
                 << '\n';
        EXPECT_EQ(list.str(), row.list) << row.text;
    }
}

TEST(Control, ParametersAndConfigsBeyond256AreIgnored) {
    std::string text = "[control]\n";
    for (int i = 0; i < 300; ++i)
        text += "name=p" + std::to_string(i) + "\ncc=" + std::to_string(i) + "\n";
    const control_ptr registry = load(text);
    for (int i = 0; i < 300; ++i)
        control_add_config(registry.get(), "control", "c", 0);
    EXPECT_EQ(registry->nb_parameters, 256u);
    EXPECT_EQ(registry->nb_configs, 256u);
    for (const auto& [name, index] : {std::pair{"p255", 255}, {"P255", -1}, {"p256", -1}})
        EXPECT_EQ(control_find_parameter(registry.get(), name), index) << name;
    EXPECT_EQ(registry->parameters[255]->midi_cc, 255u) << "what follows describes no parameter";
}

} // namespace
