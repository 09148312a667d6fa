#include "korvel/korvel.h"

#include "filter/iir_design.h"
#include "korvel/controls.h"
#include "korvel/render.h"
#include "tests/plain/korvel.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <random>

namespace {

constexpr int block = 64;
constexpr float up_to_a_third = 0.33333331f; ///< the next float lies above one third

/// An instrument at 48 kHz that is played by hand.
class instrument {
public:
    explicit instrument(const char* seed = "1") {
        setenv("TINDELWAX_SEED", seed, 1);
        p_organ = korvel_create("Tindelwax");
        organ_set_sampling_rate(p_organ, 48000);
        organ_set_block_size(p_organ, block);
    }

    ~instrument() {
        control* p_control = p_organ->p_control;
        korvel_free(p_organ);
        control_free(p_control);
    }

    instrument(const instrument&) = delete;
    instrument& operator=(const instrument&) = delete;

    korvel& state() const { return *static_cast<korvel*>(p_organ->p_instrument.get()); }

    void set(const char* name, float value) const {
        const int index = control_find_parameter(p_organ->p_control, name);
        ASSERT_GE(index, 0) << name;
        control_set_parameter(p_organ->p_control, index, value);
    }

    void send(int status, int data1, int data2, int frame = 0) const {
        const char message[] = {static_cast<char>(status), static_cast<char>(data1),
                                static_cast<char>(data2)};
        organ_receive_midi_event(p_organ, message, frame);
    }

    void press(int note, int frame = 0) const { send(0x90, note, 100, frame); }
    void release(int note, int frame = 0) const { send(0x80, note, 64, frame); }

    /// Renders blocks behind what was rendered before.
    void render(int nb_blocks = 1) {
        for (int b = 0; b < nb_blocks; ++b) {
            const std::size_t start = out_r.size();
            out_r.resize(start + block, std::numeric_limits<float>::quiet_NaN());
            out_l.resize(start + block, std::numeric_limits<float>::quiet_NaN());
            organ_process(p_organ, std::span(out_r).subspan(start),
                          std::span(out_l).subspan(start));
        }
    }

    organ* p_organ;
    std::vector<float> out_r, out_l;
};

float peak(std::span<const float> samples) {
    float largest = 0;
    for (const float x : samples)
        largest = std::max(largest, std::isfinite(x) ? std::abs(x) : 1e9f);
    return largest;
}

TEST(Korvel, StartsFromTheConfiguredDefaults) {
    const instrument organ_1;
    const korvel& state = organ_1.state();
    for (const auto& stop : state.stops)
        EXPECT_EQ(stop, 1.0f);
    EXPECT_EQ(state.vibrato_on, 0.0f);
    EXPECT_EQ(state.bass_chords_on, 1.0f);
    EXPECT_EQ(state.volume, 0.5f);
    EXPECT_EQ(state.bass_volume, 0.5f);
    EXPECT_EQ(state.contour_filter_ratio, 0.1f);
    EXPECT_EQ(state.sound_output_mode, output_mixed);

    std::vector<std::string> told;
    for (const char* name : organ_1.p_organ->p_dsp_stack->objs_names)
        told.emplace_back(name);
    EXPECT_EQ(told, (std::vector<std::string>{"Main Vibrato", "Korvel Flute filter",
                                              "Korvel Bright filter", "Korvel Brass IIR Filter",
                                              "Korvel Mellow IIR Filter", "out_filter",
                                              "out_bass_filter", "Brickwall fs/2"}));
    EXPECT_EQ(organ_1.p_organ->p_keybeds[keybed_manual]->p_env_attack->real_sample_long, 1440u);
    EXPECT_EQ(organ_1.p_organ->p_keybeds[keybed_bass]->p_env_release->real_sample_long, 144u);
}

TEST(Korvel, EveryKeySoundsItsOscillators) {
    const instrument played;
    tonegenerator* p_tg = played.p_organ->p_tonegenerators[0];
    for (int key = 0; key < 49; ++key) {
        played.press(24 + key);
        for (keybed* p_keybed : played.p_organ->p_keybeds)
            keybed_next(p_keybed, block); // within the attacks: every oscillator has its curve
        std::vector<int> sounding(p_tg->non_sustained_oscillators.begin(),
                                  p_tg->non_sustained_oscillators.begin()
                                      + p_tg->nb_non_sustained_oscs);
        sounding.insert(sounding.end(), p_tg->sustained_oscillators.begin(),
                        p_tg->sustained_oscillators.begin() + p_tg->nb_sustained_oscs);

        std::vector<int> wired;
        for (int osc = key < 12 ? key + 12 : key; osc <= std::min(key + 36, 60); osc += 12)
            wired.push_back(osc);
        if (key >= 24)
            wired.resize(key < 36 ? 3 : 2);
        if (key < 12)
            wired.push_back(key); // the bass, at full level from its first frame
        EXPECT_EQ(sounding, wired) << "key " << key;
        tonegenerator_reset_sustain(p_tg);
        organ_panic(played.p_organ);
    }
}

TEST(Korvel, RoutesLevelsAndSwitchesAsThePanelSays) {
    struct row {
        const char* name;
        const char* parameter;
        float value;
        int note;
        bool right, left; ///< sounds on the right and on the left
    };
    const row rows[] = {
        {"bass right, manual left", "Split", 0.0f, 30, true, true},
        {"a note above the bass is on the left only", "Split", 0.0f, 60, false, true},
        {"the last value up to one third", "Split", up_to_a_third, 60, false, true},
        {"manual right", "Split", 0.34f, 60, true, false},
        {"mixed", "Split", 0.67f, 60, true, true},
        {"a switch is on at one half", "Mellow", 0.5f, 60, true, true},
        {"and off below", "Mellow", 0.49f, 60, false, false},
        {"volume 0 silences the manual", "Volume", 0.0f, 60, false, false},
        {"but not the bass", "Volume", 0.0f, 30, true, true},
        {"bass 0 leaves its chord", "Bass", 0.0f, 30, true, true},
        {"no such note below", "Volume", 0.5f, 23, false, false},
        {"nor above", "Volume", 0.5f, 73, false, false},
        {"the highest", "Volume", 0.5f, 72, true, true},
    };
    for (const row& r : rows) {
        instrument played;
        for (const char* stop : {"Flute", "Bright", "Brass"})
            played.set(stop, 0.0f);
        played.set(r.parameter, r.value);
        played.press(r.note);
        played.render(20);
        EXPECT_EQ(peak(played.out_r) > 0, r.right) << r.name;
        EXPECT_EQ(peak(played.out_l) > 0, r.left) << r.name;
    }
}

TEST(Korvel, BassChordsDecideWhetherTheLowestOctavePlaysTheManual) {
    for (const auto& [chords, sounds] : {std::pair{1.0f, true}, {0.5f, true}, {0.49f, false}}) {
        instrument played;
        played.set("BassChords", chords);
        played.set("Split", 0.0f);
        played.press(30);
        played.render(20);
        EXPECT_EQ(peak(played.out_l) > 0, sounds) << chords;
        EXPECT_GT(peak(played.out_r), 0.0f) << chords;
    }
}

TEST(Korvel, TheLowestBassKeySoundsAlone) {
    instrument both, lower;
    for (instrument* p_played : {&both, &lower}) {
        p_played->set("Split", 0.0f);
        p_played->press(27);
    }
    both.press(33);
    both.render(50);
    lower.render(50);
    EXPECT_EQ(both.out_r, lower.out_r);

    both.release(27);
    both.render(50); // its release of 3 ms, then the higher key
    lower.release(27);
    lower.press(33, 10);
    lower.render(50);
    const std::span tail_both(both.out_r.end() - block, both.out_r.end());
    EXPECT_GT(peak(tail_both), 0.1f);
}

TEST(Korvel, VolumesAreLinear) {
    instrument half, quarter;
    quarter.set("Volume", 0.25f);
    quarter.set("Bass", 0.25f);
    for (instrument* p_played : {&half, &quarter}) {
        p_played->press(28);
        p_played->press(50);
        p_played->render(40);
    }
    for (std::size_t i = 0; i < half.out_r.size(); ++i)
        ASSERT_EQ(half.out_r[i], 2 * quarter.out_r[i]) << "frame " << i;
}

TEST(Korvel, AnUnknownOutputModeIsSilence) {
    instrument played;
    played.press(60);
    organ_set_output_mode(played.p_organ, 3);
    played.render(10);
    EXPECT_EQ(peak(played.out_r), 0.0f);
    EXPECT_EQ(peak(played.out_l), 0.0f);
    EXPECT_EQ(split_get_value(&played.state()), 1.0f) << "the parameter does not follow the mode";
}

TEST(Korvel, SplitShowsItsMode) {
    const instrument played;
    for (const auto& [value, text] : {std::pair{0.0f, "BassR"},
                                      {up_to_a_third, "BassR"},
                                      {0.34f, "BassL"},
                                      {0.66f, "BassL"},
                                      {0.67f, "MixLR"},
                                      {1.5f, "MixLR"}}) {
        played.set("Split", value);
        EXPECT_EQ(split_get_display(&played.state()), text) << value;
    }
}

TEST(Korvel, ContourDesignsEveryRateButThoseThatItsCornerExceeds) {
    const instrument played;
    const auto before = played.state().contour[4].load(); // 22050 Hz, whose half is 11025 Hz
    for (const float value : {0.0f, 0.3f, 1.0f}) {
        played.set("Contour", value);
        EXPECT_EQ(contour_filter_get(&played.state()), value);
        for (std::size_t i = 0; i < s_rate.size(); ++i) {
            const auto designed =
                iir_rc_first_order_coeffs(value * 100000 + 6000, 2.2e-9f, 0, s_rate[i]);
            const contour_coeffs published = played.state().contour[i];
            EXPECT_EQ(published.b0, designed ? designed->b0 : before.b0) << s_rate[i];
            EXPECT_EQ(published.a1, designed ? designed->a1 : before.a1) << s_rate[i];
        }
    }
}

TEST(Korvel, RatesBringTheirVibratoDepthAndBrickWall) {
    instrument played;
    for (const auto& [rate, times, index] : {std::tuple{44100, 1, 2},
                                             {96000, 2, 7},
                                             {192000, 4, 15},
                                             {32000, 1, 0},
                                             {88200, 2, 6},
                                             {22050, 1, 0}}) {
        organ_set_sampling_rate(played.p_organ, rate);
        EXPECT_EQ(played.state().p_vibrato->offset_table[0][1024],
                  static_cast<std::uint32_t>(65536 * (1 + 2 * 9 * times)))
            << rate;
        played.press(60);
        played.render(100);
        EXPECT_GT(peak(std::span(played.out_r).last(6000)), 1e-3f) << rate;
        EXPECT_LT(peak(played.out_r), 10.0f) << rate;
    }
}

TEST(Korvel, PlaysWhatThePlainFormPlays) {
    instrument fast, plain;
    install_plain_korvel(plain.p_organ);
    std::mt19937 random(5);
    float largest = 0;
    double error = 0;
    for (int b = 0; b < 3000; ++b) {
        if (random() % 8 == 0) {
            const int note = 20 + static_cast<int>(random() % 56);
            const int frame = static_cast<int>(random() % block);
            const int status = random() % 3 ? 0x90 : 0x80;
            for (const instrument* p_played : {&fast, &plain})
                p_played->send(status, note, 100, frame);
        }
        if (random() % 50 == 0) {
            const auto index = static_cast<int>(random() % 9);
            const float value = static_cast<float>(random() % 101) / 100;
            for (const instrument* p_played : {&fast, &plain})
                control_set_parameter(p_played->p_organ->p_control, index, value);
        }
        fast.render();
        plain.render();
    }
    for (std::size_t i = 0; i < fast.out_r.size(); ++i) {
        largest = std::max(largest, std::abs(plain.out_r[i]));
        error = std::max(error, std::abs(static_cast<double>(fast.out_r[i])
                                         - static_cast<double>(plain.out_r[i])));
    }
    // The Bright filter's pole beside 1 makes rounding, here the plain form's interpolation by a
    // weight just off 0, 30 000 times larger: -75 dB of the peak.
    EXPECT_GT(largest, 0.5f);
    EXPECT_LT(error, static_cast<double>(largest) * std::pow(10.0, -75.0 / 20));
}

TEST(Korvel, IsSilentBeforeTheFirstNoteAndFreeOfDenormalsAfterTheLast) {
    instrument played;
    played.render(100);
    EXPECT_EQ(peak(played.out_r), 0.0f);
    played.set("Vibrato", 1.0f);
    for (int note = 24; note <= 72; ++note)
        played.press(note);
    played.render(100);
    for (int note = 24; note <= 72; ++note)
        played.release(note);
    for (int second = 0; second < 60; ++second) {
        played.out_r.clear();
        played.out_l.clear();
        played.render(750);
        for (const float x : played.out_r)
            ASSERT_TRUE(x == 0 || std::abs(x) >= std::numeric_limits<float>::min()) << second;
    }
    EXPECT_EQ(peak(played.out_r), 0.0f);
}

TEST(Korvel, KeysSoundOnAcrossRateChanges) {
    instrument played;
    for (int note = 24; note <= 72; note += 5)
        played.press(note, 7);
    played.render(2);
    played.release(44);
    for (const int rate : {22050, 192000, 1000, 48000, 1000000, 44100}) {
        organ_set_sampling_rate(played.p_organ, rate);
        played.render(30);
        EXPECT_LT(peak(played.out_r), 1e3f) << rate;
    }
    EXPECT_GT(peak(std::span(played.out_r).last(block)), 1e-4f);
}

/// A folder in which configuration texts of other makers lie where the instrument looks.
class KorvelTexts : public testing::Test {
protected:
    void SetUp() override {
        root = std::filesystem::temp_directory_path() / ("korvel" + std::to_string(getpid()));
        for (const char* folder : {"here", "control/confs", "harpmatrix"})
            std::filesystem::create_directories(root / folder);
        std::filesystem::current_path(root / "here");
    }

    void TearDown() override {
        std::filesystem::current_path(before);
        std::filesystem::remove_all(root);
    }

    void write(const char* name, const std::string& text) const {
        std::ofstream(root / name) << text;
    }

    std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::path root;
};

TEST_F(KorvelTexts, DamagedWiringPlaysWhatIsSound) {
    const std::string head = "[KORVEL_MANUAL]\nnb_keys=49\n";
    const std::string sound = "index=36\nnb_contacts=1\ncontact=0\nnb_voices=1\noscillator=36\n"
                              "tapering_resistor=100000\n";
    const std::pair<const char*, std::string> rows[] = {
        {"a key beyond", head + sound + "index=4711\nnb_contacts=1\ncontact=0\n"},
        {"negative counts", head + sound
                                + "index=3\nnb_contacts=-1\nindex=4\nnb_contacts=1\n"
                                  "contact=0\nnb_voices=-7\noscillator=1\n"},
        {"huge counts", head + sound + "index=3\nnb_contacts=2000000000\nnb_keys=2000000000\n"},
        {"a voice beyond", head + sound + "oscillator=12\ntapering_resistor=1\n"},
        {"no such oscillator", head + sound
                                   + "index=37\nnb_contacts=1\ncontact=0\nnb_voices=2\n"
                                     "oscillator=500\ntapering_resistor=1\n"
                                     "oscillator=-5\ntapering_resistor=1\n"},
        {"a resistor of 0", head + sound
                                + "index=37\nnb_contacts=1\ncontact=0\nnb_voices=1\n"
                                  "oscillator=36\ntapering_resistor=0\n"},
    };
    for (const auto& [name, text] : rows) {
        write("harpmatrix/korvel.ini", text);
        instrument played;
        for (int note = 24; note <= 72; ++note)
            played.press(note);
        played.render(50);
        EXPECT_GT(peak(played.out_r), 1e-4f) << name;
        EXPECT_LT(peak(played.out_r), 10.0f) << name;
    }
}

TEST_F(KorvelTexts, AControlTextWithGapsLeavesAnInstrumentThatPlays) {
    for (const char* text : {"", "[control]\ncc=5\n", "[control]\nname=Flute\ndefault=1.0\n",
                             "[control]\nname=Volume\ndefault=nonsense\nname=Volume\n"}) {
        write("control/confs/korvel.ini", text);
        instrument played;
        played.press(60);
        played.render(20);
        EXPECT_LT(peak(played.out_r), 10.0f) << text;
    }
    write("control/confs/korvel.ini",
          "[control]\nname=Volume\ndefault=0.5\nname=Mellow\ndefault=1\nname=Split\ndefault=1\n");
    instrument played;
    played.press(60);
    played.render(20);
    EXPECT_GT(peak(played.out_r), 1e-4f) << "what the text gives is bound";
}

} // namespace
