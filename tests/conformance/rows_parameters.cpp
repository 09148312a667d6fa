/// Parameters: names, defaults, values and the texts shown for them.

#include "conformance/instrument.h"

#include <limits>

namespace {

using Parameters = Row;

/// Bytes that hosts have for a parameter's texts, their terminating zeros included.
constexpr std::size_t label_size = 8;
constexpr std::size_t display_size = 9;
constexpr std::size_t name_size = 11; ///< "BassChords" fills it

struct parameter_case {
    const char* name;
    float default_value;
    std::string zero, half, one, above; ///< texts for 0, 0.5, 1 and 2
};

const parameter_case switch_case(const char* name, float default_value) {
    return {name, default_value, "OFF", "OFF", "ON", "ON"};
}

const parameter_case level_case(const char* name) {
    return {name, 0.5f, "-oo", "-6.02059", "0.000000", "6.020599"};
}

const parameter_case number_case(const char* name, float default_value) {
    return {name, default_value, "0.000000", "0.500000", "1.000000", "2.000000"};
}

const parameter_case cases[]{switch_case("Flute", 1),   switch_case("Bright", 1),
                             switch_case("Brass", 1),   switch_case("Mellow", 1),
                             switch_case("Vibrato", 0), switch_case("BassChords", 1),
                             level_case("Volume"),      number_case("Contour", 0.1f),
                             level_case("Bass"),        number_case("Split", 1)};

TEST_F(Parameters, NamesAndDefaults) {
    instrument asked(running);
    for (VstInt32 index = 0; index < nb_parameters; ++index) {
        const std::string name = asked.text(effGetParamName, name_size, index);
        running.expect(name == cases[index].name,
                       "parameter " + std::to_string(index) + " is \"" + name + "\"");
        running.expect(asked.get(index) == cases[index].default_value,
                       name + " starts at " + std::to_string(asked.get(index)));
        running.expect(asked.ask(effCanBeAutomated, index) == 1, name + " is not automatable");
    }
}

TEST_F(Parameters, Displays) {
    instrument asked(running);
    for (VstInt32 index = 0; index < nb_parameters; ++index) {
        const parameter_case& wanted = cases[index];
        const std::pair<float, std::string> texts[]{{0.0f, wanted.zero},  {-0.0f, wanted.zero},
                                                    {-1.0f, wanted.zero}, {0.5f, wanted.half},
                                                    {1.0f, wanted.one},   {2.0f, wanted.above}};
        for (const auto& [value, text] : texts) {
            asked.set(index, value);
            const std::string got = asked.text(effGetParamDisplay, display_size, index);
            running.expect(got == text, std::string(wanted.name) + " at " + std::to_string(value)
                                            + " shows \"" + got + "\", wanted \"" + text + "\"");
        }
    }
}

TEST_F(Parameters, ValuesAreKept) {
    instrument asked(running);
    const std::pair<float, float> kept[]{
        {0.25f, 0.25f}, {1.0f, 1.0f}, {3.0f, 3.0f}, {-0.2f, 0.0f}, {0.7f, 0.7f}};
    for (VstInt32 index = 0; index < nb_parameters; ++index)
        for (const auto& [given, wanted] : kept) {
            asked.set(index, given);
            running.expect(asked.get(index) == wanted, std::string(cases[index].name) + " set to "
                                                           + std::to_string(given) + " is "
                                                           + std::to_string(asked.get(index)));
        }
}

TEST_F(Parameters, IndicesOutsideAreNobodys) {
    instrument asked(running);
    const guarded_memory text(display_size);
    for (const VstInt32 index :
         {-1, static_cast<VstInt32>(nb_parameters), 255, 256, 100000,
          std::numeric_limits<VstInt32>::max(), std::numeric_limits<VstInt32>::min()}) {
        running.doing = "parameter " + std::to_string(index);
        asked.set(index, 0.3f);
        running.expect(asked.get(index) == 0.0f, "it has a value");
        asked.ask(effGetParamName, index, 0, text.data());
        asked.ask(effGetParamDisplay, index, 0, text.data());
        running.expect(text.is_untouched(), "it has a text");
    }
    running.doing.clear();
    for (VstInt32 index = 0; index < nb_parameters; ++index)
        running.expect(asked.get(index) == cases[index].default_value,
                       std::string(cases[index].name) + " changes with another's index");
}

TEST_F(Parameters, LabelsAreLeftAlone) {
    instrument asked(running);
    const guarded_memory text(label_size);
    for (VstInt32 index = -1; index <= nb_parameters; ++index)
        asked.ask(effGetParamLabel, index, 0, text.data());
    running.expect(text.is_untouched(), "a label is written");
}

} // namespace
