#include "harpmatrix/harpmatrix.h"

#include "tests/temporary_folder.h"

#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <sstream>

namespace {

struct HarpMatrix : testing::Test {
    std::unique_ptr<harpmatrix, decltype(&harpmatrix_free)> matrix{nullptr, harpmatrix_free};
    random15 random{1};
    using resistor = std::pair<unsigned, float>; ///< ohms, siemens
    std::vector<resistor> resistors;             ///< in the order of keys, contacts and voices

    /// Returns the wiring as "key.contact: oscillators; "; counts and arrays must agree everywhere.
    std::string load(const char* name, const std::string& file) {
        matrix.reset(harpmatrix_create(name));
        harpmatrix_load_ini(matrix.get(), file.c_str(), random);
        std::ostringstream text;
        resistors.clear();
        EXPECT_EQ(matrix->p_keys.size(), matrix->nb_keys);
        for (std::size_t k = 0; k < matrix->p_keys.size(); ++k) {
            EXPECT_EQ(matrix->p_keys[k].p_contacts.size(), matrix->p_keys[k].nb_contacts);
            for (unsigned c = 0; c < matrix->p_keys[k].nb_contacts; ++c) {
                const contact& wired = matrix->p_keys[k].p_contacts[c];
                text << k << '.' << c << ':';
                for (std::size_t v = 0; v < wired.nb_voices; ++v) {
                    text << ' ' << wired.oscillators.at(v);
                    resistors.emplace_back(wired.tapering.at(v), wired.conductance.at(v));
                }
                text << "; ";
            }
        }
        return text.str();
    }

    std::string load_text(const std::string& text) {
        const temporary_folder folder;
        file_write(folder / "m.ini", text);
        return load("M", folder / "m.ini");
    }
};

TEST_F(HarpMatrix, TheManualIsWiredByItsRuleThroughScatteredResistors) {
    std::ostringstream expected;
    for (int k = 0; k < 49; ++k) {
        expected << k << ".0:";
        for (int octave = k < 12 ? 1 : 0; octave <= (k < 24 ? 3 : k < 36 ? 2 : 1); ++octave)
            expected << ' ' << k + 12 * octave;
        expected << "; ";
        if (k < 12)
            expected << k << ".1: " << k << "; ";
    }
    EXPECT_EQ(load("KORVEL_MANUAL", "../harpmatrix/korvel.ini"), expected.str());
    for (const auto& [key, contact] : {std::pair{12u, 1u}, {49u, 0u}, {~0u, ~0u}})
        EXPECT_EQ(harpmatrix_find_contact(matrix.get(), key, contact), nullptr) << key;
    random15 draws{1};
    for (const auto& [ohms, siemens] : resistors) {
        const double r = static_cast<double>(random15_unit(draws));
        ASSERT_EQ(ohms, static_cast<unsigned>(100000 + (2 * r - 1) * 0.1 * 100000));
        ASSERT_EQ(siemens, static_cast<float>(1.0 / ohms));
    }
    EXPECT_EQ(draws.state, random.state);
}

const std::string contact_0_of_0 = "[M]\nnb_keys=2\nindex=0\nnb_contacts=1\ncontact=0\n";

TEST_F(HarpMatrix, DamagedTextsKeepTheirSoundParts) {
    const std::string voice = "nb_voices=1\noscillator=7\ntapering_resistor=1000\n";
    const std::string sound = contact_0_of_0 + voice;
    const struct {
        const char* name;
        std::string text;
        const char* wiring = "0.0: 7; ";
    } rows[] = {
        {"upper-case keys, other section, unknown key",
         "[m]\nNB_KEYS=2\nINDEX=0\nNb_Contacts=1\nContact=0\nNB_VOICES=1\nOSCILLATOR=7\ncolor=5\n"
         "[other]\nnb_keys=9\n"},
        {"voice beyond its count", sound + "oscillator=8\ntapering_resistor=1\n"},
        {"key beyond its count", sound + "index=2\nnb_contacts=1\ncontact=0\n" + voice},
        {"negative key", sound + "index=-1\nnb_contacts=1\ncontact=0\n" + voice},
        {"a key that no integer holds",
         sound + "index=4294967296\nnb_contacts=1\ncontact=0\n" + voice},
        {"contact beyond its count", sound + "contact=1\n" + voice},
        {"negative contact", sound + "contact=-1\n" + voice},
        {"key without contacts", sound + "index=1\ncontact=0\n" + voice},
        {"key without its contact", sound + "index=1\nnb_contacts=1\n" + voice, "0.0: 7; 1.0:; "},
        {"voices counted again", contact_0_of_0 + "nb_voices=1\noscillator=5\n" + voice},
        {"negative counts", sound + "nb_voices=-1\nnb_contacts=-1\nnb_keys=-1\n"},
        {"huge counts", sound + "nb_voices=257\nnb_contacts=2147483647\nnb_keys=99999999\n"},
        {"resistor before the oscillator",
         contact_0_of_0 + "nb_voices=1\ntapering_resistor=5\noscillator=7\n"},
        {"nothing in order", "[M]\ntapering_resistor=1\noscillator=1\nnb_voices=1\ncontact=0\n"
                             "nb_contacts=1\nindex=0\n"
                                 + sound},
        {"fewer keys later", sound + "nb_keys=0\noscillator=1\ntapering_resistor=1\n", ""},
        {"fewer contacts later", sound + "nb_contacts=0\noscillator=1\ntapering_resistor=1\n", ""},
        {"fewer voices later", sound + "nb_voices=0\noscillator=1\ntapering_resistor=1\n",
         "0.0:; "},
        {"a key again", sound + "index=0\noscillator=1\n", ""},
        {"no numbers", sound + "index=\nnb_contacts=x\ncontact=0\n", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(load_text(row.text), row.wiring) << row.name;
        for (const auto& [ohms, siemens] : resistors)
            EXPECT_TRUE(ohms == 0 || (ohms >= 900 && ohms <= 1100)) << row.name << " " << ohms;
    }
}

TEST_F(HarpMatrix, ATextWithTooManyVoicesGivesWhatCameBefore) {
    std::string text = "[M]\nnb_keys=256\n";
    for (int k = 0; k < 256; ++k) // each key twice: what is forgotten does not count
        text += "index=" + std::to_string(k) + "\nnb_contacts=2\ncontact=0\nnb_voices=200\n"
                + "index=" + std::to_string(k) + "\nnb_contacts=1\ncontact=0\nnb_voices=256\n";
    const auto nb_resistors = [&](const std::string& last) {
        load_text(text + last);
        return resistors.size();
    };
    EXPECT_EQ(nb_resistors(""), 65536u);
    EXPECT_EQ(nb_resistors("nb_voices=255\n"), 65535u);
    EXPECT_EQ(nb_resistors("nb_contacts=2\ncontact=0\nnb_voices=256\ncontact=1\nnb_voices=1\n"
                           "contact=0\nnb_voices=9\n"),
              65536u);
}

TEST_F(HarpMatrix, ExtremeResistorsScatterWithinTheirRange) {
    load_text(contact_0_of_0
              + "nb_voices=3\noscillator=1\ntapering_resistor=2147483647\n"
                "oscillator=2\ntapering_resistor=-5\noscillator=3\ntapering_resistor=1\n");
    ASSERT_EQ(resistors.size(), 3u);
    EXPECT_NEAR(resistors[0].first, 2147483647.0, 214748365.0);
    EXPECT_EQ(resistors[1], (resistor{0, std::numeric_limits<float>::infinity()}));
    EXPECT_LE(resistors[2].first, 1u);
}

} // namespace
