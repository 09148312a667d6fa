#include "program/program.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <memory>

namespace {

static_assert(std::endian::native == std::endian::little, "records are little-endian");
static_assert(sizeof(int) == 4 && sizeof(float) == 4);

using file_ptr = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

file_ptr open_file(const char* filename, const char* mode) {
    return {std::fopen(filename, mode), std::fclose};
}

template <typename Value>
char* put(char* data, const Value* values, std::size_t count) {
    return std::copy_n(reinterpret_cast<const char*>(values), count * sizeof(Value), data);
}

template <typename Value>
const char* get(const char* data, Value* values, std::size_t count) {
    std::copy_n(data, count * sizeof(Value), reinterpret_cast<char*>(values));
    return data + count * sizeof(Value);
}

std::size_t record_size(std::size_t name_long, std::size_t nb_parameters) {
    return name_long + 1 + sizeof(std::uint32_t) + 3 * nb_parameters * sizeof(std::uint32_t);
}

} // namespace

program* program_create(const char* name, unsigned nb_parameters) {
    return new program{.name = name,
                       .nb_parameters = nb_parameters,
                       .midi_cc = std::vector<int>(nb_parameters),
                       .midi_channel = std::vector<int>(nb_parameters),
                       .parameter_value = std::vector<float>(nb_parameters)};
}

void program_free(program* p_prog) { delete p_prog; }

void program_from_control(program* p_prog, const control* p_control) {
    const unsigned count = std::min(p_prog->nb_parameters, p_control->nb_parameters);
    for (unsigned j = 0; j < count; ++j) {
        const parameter& param = *p_control->parameters[j];
        p_prog->midi_cc[j] = static_cast<int>(param.midi_cc.load(std::memory_order_relaxed));
        p_prog->midi_channel[j] =
            static_cast<int>(param.midi_channel.load(std::memory_order_relaxed));
        p_prog->parameter_value[j] = control_get_parameter(p_control, static_cast<int>(j));
    }
}

std::size_t program_get_mem_size(const program* p_prog) {
    return record_size(p_prog->name.size(), p_prog->nb_parameters);
}

void program_to_memory(const program* p_prog, char** data, std::size_t* byte_size) {
    const std::size_t n = p_prog->nb_parameters;
    *byte_size = program_get_mem_size(p_prog);
    *data = new char[*byte_size];
    char* p = put(*data, p_prog->name.c_str(), p_prog->name.size() + 1);
    p = put(p, &p_prog->nb_parameters, 1);
    p = put(p, p_prog->midi_cc.data(), n);
    p = put(p, p_prog->midi_channel.data(), n);
    put(p, p_prog->parameter_value.data(), n);
}

void program_from_memory(program* p_prog, const char* data, std::size_t byte_size) {
    const auto name_long = static_cast<std::size_t>(std::find(data, data + byte_size, '\0') - data);
    const std::size_t n = p_prog->nb_parameters;
    if (byte_size < record_size(name_long, n))
        return;
    unsigned count = 0;
    const char* p = get(data + name_long + 1, &count, 1);
    if (count != n)
        return;
    p_prog->name.assign(data, name_long);
    p = get(p, p_prog->midi_cc.data(), n);
    p = get(p, p_prog->midi_channel.data(), n);
    get(p, p_prog->parameter_value.data(), n);
}

void program_to_file(const program* p_prog, const char* filename) {
    char* data = nullptr;
    std::size_t byte_size = 0;
    program_to_memory(p_prog, &data, &byte_size);
    const std::unique_ptr<char[]> owner(data);
    if (const file_ptr file = open_file(filename, "wb"))
        std::fwrite(data, 1, byte_size, file.get());
}

void program_from_file(program* p_prog, const char* filename) {
    const file_ptr file = open_file(filename, "rb");
    if (!file)
        return;
    std::vector<char> data(program_get_mem_size(p_prog));
    const std::size_t byte_size = std::fread(data.data(), 1, data.size(), file.get());
    program_from_memory(p_prog, data.data(), byte_size);
}

program_bank* program_bank_create(const char* name, unsigned nb_programs, control* p_control) {
    auto* p_bank = new program_bank{.name = name, .nb_programs = nb_programs};
    p_control->nb_programs = nb_programs;
    for (unsigned i = 0; i < nb_programs; ++i) {
        p_bank->programs.emplace_back(program_create("INIT", p_control->nb_parameters));
        program_from_control(p_bank->programs.back().get(), p_control);
    }
    return p_bank;
}

void program_bank_free(program_bank* p_bank) { delete p_bank; }

void bank_to_file(const program_bank*, const char*) {}

void bank_from_file(program_bank*, const char*) {}
