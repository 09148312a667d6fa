#pragma once
/// The CLAP binary interface, version 1.2.10: of its records, identifiers and constants those that
/// this plug-in and its host exchange, under their published names and numbers, for 64-bit systems.
/// Nothing here knows an instrument. What the audio thread calls says that it does not block, on
/// both sides: the interface demands as much.

#include "realtime/nonblocking.h"

#include <cstddef>
#include <cstdint>

using clap_id = std::uint32_t;
constexpr clap_id CLAP_INVALID_ID = UINT32_MAX;

constexpr std::size_t CLAP_NAME_SIZE = 256; ///< bytes with the terminating zero, here and below
constexpr std::size_t CLAP_PATH_SIZE = 1024;

struct clap_version {
    std::uint32_t major;
    std::uint32_t minor;
    std::uint32_t revision;
};
using clap_version_t = clap_version; ///< for fields of the same name, as in all such aliases

constexpr clap_version clap_interface_version{1, 2, 10};

/// Streams may move fewer bytes than asked.
struct clap_istream {
    void* ctx;
    std::int64_t (*read)(const clap_istream* stream, void* buffer, std::uint64_t size);
};

struct clap_ostream {
    void* ctx;
    std::int64_t (*write)(const clap_ostream* stream, const void* buffer, std::uint64_t size);
};

// The library and its plug-ins.

struct clap_host {
    clap_version_t clap_version;
    void* host_data;
    const char* name;
    const char* vendor;
    const char* url;
    const char* version;
    const void* (*get_extension)(const clap_host* host, const char* extension_id);
    void (*request_restart)(const clap_host* host);
    void (*request_process)(const clap_host* host);
    void (*request_callback)(const clap_host* host);
};

struct clap_plugin_descriptor {
    clap_version_t clap_version;
    const char* id;
    const char* name;
    const char* vendor;
    const char* url;
    const char* manual_url;
    const char* support_url;
    const char* version;
    const char* description;
    const char* const* features; ///< ends with null
};

struct clap_process;
using clap_process_t = clap_process;
using clap_process_status = std::int32_t;
constexpr clap_process_status CLAP_PROCESS_ERROR = 0;
constexpr clap_process_status CLAP_PROCESS_CONTINUE = 1;
constexpr clap_process_status CLAP_PROCESS_SLEEP = 4;

struct clap_plugin {
    const clap_plugin_descriptor* desc;
    void* plugin_data;
    bool (*init)(const clap_plugin* plugin);
    void (*destroy)(const clap_plugin* plugin);
    bool (*activate)(const clap_plugin* plugin, double sample_rate, std::uint32_t min_frames_count,
                     std::uint32_t max_frames_count);
    void (*deactivate)(const clap_plugin* plugin);
    bool (*start_processing)(const clap_plugin* plugin) noexcept NONBLOCKING;
    void (*stop_processing)(const clap_plugin* plugin) noexcept NONBLOCKING;
    void (*reset)(const clap_plugin* plugin) noexcept NONBLOCKING;
    clap_process_status (*process)(const clap_plugin* plugin,
                                   const clap_process_t* process) noexcept NONBLOCKING;
    const void* (*get_extension)(const clap_plugin* plugin, const char* id);
    void (*on_main_thread)(const clap_plugin* plugin);
};

constexpr char clap_plugin_factory_id[] = "clap.plugin-factory";

struct clap_plugin_factory {
    std::uint32_t (*get_plugin_count)(const clap_plugin_factory* factory);
    const clap_plugin_descriptor* (*get_plugin_descriptor)(const clap_plugin_factory* factory,
                                                           std::uint32_t index);
    const clap_plugin* (*create_plugin)(const clap_plugin_factory* factory, const clap_host* host,
                                        const char* plugin_id);
};

struct clap_plugin_entry {
    clap_version_t clap_version;
    bool (*init)(const char* plugin_path);
    void (*deinit)();
    const void* (*get_factory)(const char* factory_id);
};

// Events.

constexpr std::uint16_t CLAP_CORE_EVENT_SPACE_ID = 0;

enum clap_event_type : std::uint16_t {
    CLAP_EVENT_NOTE_ON = 0,
    CLAP_EVENT_NOTE_OFF = 1,
    CLAP_EVENT_NOTE_CHOKE = 2,
    CLAP_EVENT_NOTE_END = 3,
    CLAP_EVENT_PARAM_VALUE = 5,
    CLAP_EVENT_PARAM_GESTURE_BEGIN = 7,
    CLAP_EVENT_PARAM_GESTURE_END = 8,
    CLAP_EVENT_TRANSPORT = 9,
    CLAP_EVENT_MIDI = 10,
};

constexpr std::uint32_t CLAP_EVENT_DONT_RECORD = 2; ///< a flag

struct clap_event_header {
    std::uint32_t size; ///< of the whole event
    std::uint32_t time; ///< frames from the start of the block
    std::uint16_t space_id;
    std::uint16_t type;
    std::uint32_t flags;
};

/// -1 in any part of the address stands for all.
struct clap_event_note {
    clap_event_header header;
    std::int32_t note_id;
    std::int16_t port_index;
    std::int16_t channel;
    std::int16_t key;
    double velocity; ///< 0 to 1
};

struct clap_event_param_value {
    clap_event_header header;
    clap_id param_id;
    void* cookie;
    std::int32_t note_id;
    std::int16_t port_index;
    std::int16_t channel;
    std::int16_t key;
    double value;
};

struct clap_event_param_gesture {
    clap_event_header header;
    clap_id param_id;
};

struct clap_event_midi {
    clap_event_header header;
    std::uint16_t port_index;
    std::uint8_t data[3];
};

/// Sorted by time, as the next.
struct clap_input_events {
    void* ctx;
    std::uint32_t (*size)(const clap_input_events* list) noexcept NONBLOCKING;
    const clap_event_header* (*get)(const clap_input_events* list,
                                    std::uint32_t index) noexcept NONBLOCKING;
};

struct clap_output_events {
    void* ctx;
    bool (*try_push)(const clap_output_events* list,
                     const clap_event_header* event) noexcept NONBLOCKING;
};

// Processing.

struct clap_audio_buffer {
    float** data32; ///< [channel][frame]; or data64
    double** data64;
    std::uint32_t channel_count;
    std::uint32_t latency;
    std::uint64_t constant_mask; ///< bit n: channel n holds one value throughout
};

struct clap_event_transport {
    clap_event_header header;
    std::uint32_t flags;
    std::int64_t song_pos_beats; ///< beats and seconds: fixed point
    std::int64_t song_pos_seconds;
    double tempo; ///< beats a minute
    double tempo_inc;
    std::int64_t loop_start_beats;
    std::int64_t loop_end_beats;
    std::int64_t loop_start_seconds;
    std::int64_t loop_end_seconds;
    std::int64_t bar_start;
    std::int32_t bar_number;
    std::uint16_t tsig_num;
    std::uint16_t tsig_denom;
};

struct clap_process {
    std::int64_t steady_time;
    std::uint32_t frames_count;
    const clap_event_transport* transport;
    const clap_audio_buffer* audio_inputs;
    clap_audio_buffer* audio_outputs;
    std::uint32_t audio_inputs_count;
    std::uint32_t audio_outputs_count;
    const clap_input_events* in_events;
    const clap_output_events* out_events;
};

// Ports.

constexpr char clap_audio_ports_id[] = "clap.audio-ports";
constexpr char CLAP_PORT_STEREO[] = "stereo";
constexpr std::uint32_t CLAP_AUDIO_PORT_IS_MAIN = 1;

struct clap_audio_port_info {
    clap_id id;
    char name[CLAP_NAME_SIZE];
    std::uint32_t flags;
    std::uint32_t channel_count;
    const char* port_type;
    clap_id in_place_pair;
};

struct clap_plugin_audio_ports {
    std::uint32_t (*count)(const clap_plugin* plugin, bool is_input);
    bool (*get)(const clap_plugin* plugin, std::uint32_t index, bool is_input,
                clap_audio_port_info* info);
};

constexpr char clap_note_ports_id[] = "clap.note-ports";
constexpr std::uint32_t CLAP_NOTE_DIALECT_CLAP = 1;
constexpr std::uint32_t CLAP_NOTE_DIALECT_MIDI = 2;

struct clap_note_port_info {
    clap_id id;
    std::uint32_t supported_dialects;
    std::uint32_t preferred_dialect;
    char name[CLAP_NAME_SIZE];
};

struct clap_plugin_note_ports {
    std::uint32_t (*count)(const clap_plugin* plugin, bool is_input);
    bool (*get)(const clap_plugin* plugin, std::uint32_t index, bool is_input,
                clap_note_port_info* info);
};

// Parameters.

constexpr char clap_params_id[] = "clap.params";

using clap_param_info_flags = std::uint32_t;
constexpr clap_param_info_flags CLAP_PARAM_IS_STEPPED = 1;
constexpr clap_param_info_flags CLAP_PARAM_IS_READONLY = 8; ///< for the host
constexpr clap_param_info_flags CLAP_PARAM_IS_AUTOMATABLE = 32;
constexpr clap_param_info_flags CLAP_PARAM_IS_ENUM = 65536;

using clap_param_rescan_flags = std::uint32_t;
constexpr clap_param_rescan_flags CLAP_PARAM_RESCAN_VALUES = 1;
using clap_param_clear_flags = std::uint32_t;

struct clap_param_info {
    clap_id id;
    clap_param_info_flags flags;
    void* cookie;
    char name[CLAP_NAME_SIZE];
    char module[CLAP_PATH_SIZE];
    double min_value;
    double max_value;
    double default_value;
};

struct clap_plugin_params {
    std::uint32_t (*count)(const clap_plugin* plugin);
    bool (*get_info)(const clap_plugin* plugin, std::uint32_t param_index,
                     clap_param_info* param_info);
    bool (*get_value)(const clap_plugin* plugin, clap_id param_id, double* out_value);
    bool (*value_to_text)(const clap_plugin* plugin, clap_id param_id, double value,
                          char* out_buffer, std::uint32_t out_buffer_capacity);
    bool (*text_to_value)(const clap_plugin* plugin, clap_id param_id, const char* param_value_text,
                          double* out_value);
    void (*flush)(const clap_plugin* plugin, const clap_input_events* in,
                  const clap_output_events* out) noexcept NONBLOCKING;
};

struct clap_host_params {
    void (*rescan)(const clap_host* host, clap_param_rescan_flags flags);
    void (*clear)(const clap_host* host, clap_id param_id, clap_param_clear_flags flags);
    void (*request_flush)(const clap_host* host);
};

constexpr char clap_remote_controls_id[] = "clap.remote-controls/2";
constexpr char clap_remote_controls_draft_id[] = "clap.remote-controls.draft/2"; ///< older hosts'
constexpr std::size_t CLAP_REMOTE_CONTROLS_COUNT = 8;

struct clap_remote_controls_page {
    char section_name[CLAP_NAME_SIZE];
    clap_id page_id;
    char page_name[CLAP_NAME_SIZE];
    clap_id param_ids[CLAP_REMOTE_CONTROLS_COUNT];
    bool is_for_preset;
};

struct clap_plugin_remote_controls {
    std::uint32_t (*count)(const clap_plugin* plugin);
    bool (*get)(const clap_plugin* plugin, std::uint32_t page_index,
                clap_remote_controls_page* page);
};

// The panel.

constexpr char clap_gui_id[] = "clap.gui";
constexpr char CLAP_WINDOW_API_X11[] = "x11";     ///< sizes are physical pixels
constexpr char CLAP_WINDOW_API_WIN32[] = "win32"; ///< these, too
#if defined(_WIN32)
constexpr const char* clap_system_window_api = CLAP_WINDOW_API_WIN32;
#else
constexpr const char* clap_system_window_api = CLAP_WINDOW_API_X11;
#endif

struct clap_window {
    const char* api;
    union {
        unsigned long x11;
        void* ptr;
    };
};

struct clap_gui_resize_hints; // not given

struct clap_plugin_gui {
    bool (*is_api_supported)(const clap_plugin* plugin, const char* api, bool is_floating);
    bool (*get_preferred_api)(const clap_plugin* plugin, const char** api, bool* is_floating);
    bool (*create)(const clap_plugin* plugin, const char* api, bool is_floating);
    void (*destroy)(const clap_plugin* plugin);
    bool (*set_scale)(const clap_plugin* plugin, double scale);
    bool (*get_size)(const clap_plugin* plugin, std::uint32_t* width, std::uint32_t* height);
    bool (*can_resize)(const clap_plugin* plugin);
    bool (*get_resize_hints)(const clap_plugin* plugin, clap_gui_resize_hints* hints);
    bool (*adjust_size)(const clap_plugin* plugin, std::uint32_t* width, std::uint32_t* height);
    bool (*set_size)(const clap_plugin* plugin, std::uint32_t width, std::uint32_t height);
    bool (*set_parent)(const clap_plugin* plugin, const clap_window* window);
    bool (*set_transient)(const clap_plugin* plugin, const clap_window* window);
    void (*suggest_title)(const clap_plugin* plugin, const char* title);
    bool (*show)(const clap_plugin* plugin);
    bool (*hide)(const clap_plugin* plugin);
};

constexpr char clap_timer_support_id[] = "clap.timer-support";

struct clap_plugin_timer_support {
    void (*on_timer)(const clap_plugin* plugin, clap_id timer_id);
};

struct clap_host_timer_support {
    bool (*register_timer)(const clap_host* host, std::uint32_t period_ms, clap_id* timer_id);
    bool (*unregister_timer)(const clap_host* host, clap_id timer_id);
};

// Presets.

constexpr char clap_preset_discovery_factory_id[] = "clap.preset-discovery-factory/2";
constexpr char clap_preset_discovery_factory_draft_id[] = "clap.preset-discovery-factory/draft-2";

constexpr std::uint32_t CLAP_PRESET_DISCOVERY_LOCATION_FILE = 0;
constexpr std::uint32_t CLAP_PRESET_DISCOVERY_LOCATION_PLUGIN = 1; ///< in the library
constexpr std::uint32_t CLAP_PRESET_DISCOVERY_IS_FACTORY_CONTENT = 1;

using clap_timestamp = std::uint64_t; ///< seconds since 1970

struct clap_universal_plugin_id {
    const char* abi; ///< "clap" for our kind
    const char* id;
};

struct clap_preset_discovery_filetype;  // none is declared
struct clap_preset_discovery_soundpack; // as little

struct clap_preset_discovery_location {
    std::uint32_t flags;
    const char* name;
    std::uint32_t kind;
    const char* location; ///< null for the library
};

/// Takes what is said of presets: each begins with its name and key, and its facts follow. Once
/// begin_preset has returned false, nothing more may be said.
struct clap_preset_discovery_metadata_receiver {
    void* receiver_data;
    void (*on_error)(const clap_preset_discovery_metadata_receiver* receiver, std::int32_t os_error,
                     const char* error_message);
    bool (*begin_preset)(const clap_preset_discovery_metadata_receiver* receiver, const char* name,
                         const char* load_key);
    void (*add_plugin_id)(const clap_preset_discovery_metadata_receiver* receiver,
                          const clap_universal_plugin_id* plugin_id);
    void (*set_soundpack_id)(const clap_preset_discovery_metadata_receiver* receiver,
                             const char* soundpack_id);
    void (*set_flags)(const clap_preset_discovery_metadata_receiver* receiver, std::uint32_t flags);
    void (*add_creator)(const clap_preset_discovery_metadata_receiver* receiver,
                        const char* creator);
    void (*set_description)(const clap_preset_discovery_metadata_receiver* receiver,
                            const char* description);
    void (*set_timestamps)(const clap_preset_discovery_metadata_receiver* receiver,
                           clap_timestamp creation_time, clap_timestamp modification_time);
    void (*add_feature)(const clap_preset_discovery_metadata_receiver* receiver,
                        const char* feature);
    void (*add_extra_info)(const clap_preset_discovery_metadata_receiver* receiver, const char* key,
                           const char* value);
};

/// The host's: takes the places in which presets lie.
struct clap_preset_discovery_indexer {
    clap_version_t clap_version;
    const char* name;
    const char* vendor;
    const char* url;
    const char* version;
    void* indexer_data;
    bool (*declare_filetype)(const clap_preset_discovery_indexer* indexer,
                             const clap_preset_discovery_filetype* filetype);
    bool (*declare_location)(const clap_preset_discovery_indexer* indexer,
                             const clap_preset_discovery_location* location);
    bool (*declare_soundpack)(const clap_preset_discovery_indexer* indexer,
                              const clap_preset_discovery_soundpack* soundpack);
    const void* (*get_extension)(const clap_preset_discovery_indexer* indexer,
                                 const char* extension_id);
};

struct clap_preset_discovery_provider_descriptor {
    clap_version_t clap_version;
    const char* id;
    const char* name;
    const char* vendor;
};

/// The library's: knows presets without an instrument.
struct clap_preset_discovery_provider {
    const clap_preset_discovery_provider_descriptor* desc;
    void* provider_data;
    bool (*init)(const clap_preset_discovery_provider* provider);
    void (*destroy)(const clap_preset_discovery_provider* provider);
    bool (*get_metadata)(const clap_preset_discovery_provider* provider,
                         std::uint32_t location_kind, const char* location,
                         const clap_preset_discovery_metadata_receiver* metadata_receiver);
    const void* (*get_extension)(const clap_preset_discovery_provider* provider,
                                 const char* extension_id);
};

struct clap_preset_discovery_factory {
    std::uint32_t (*count)(const clap_preset_discovery_factory* factory);
    const clap_preset_discovery_provider_descriptor* (*get_descriptor)(
        const clap_preset_discovery_factory* factory, std::uint32_t index);
    const clap_preset_discovery_provider* (*create)(const clap_preset_discovery_factory* factory,
                                                    const clap_preset_discovery_indexer* indexer,
                                                    const char* provider_id);
};

constexpr char clap_preset_load_id[] = "clap.preset-load/2";
constexpr char clap_preset_load_draft_id[] = "clap.preset-load.draft/2"; ///< older hosts'

struct clap_plugin_preset_load {
    bool (*from_location)(const clap_plugin* plugin, std::uint32_t location_kind,
                          const char* location, const char* load_key);
};

struct clap_host_preset_load {
    void (*on_error)(const clap_host* host, std::uint32_t location_kind, const char* location,
                     const char* load_key, std::int32_t os_error, const char* msg);
    void (*loaded)(const clap_host* host, std::uint32_t location_kind, const char* location,
                   const char* load_key);
};

// The rest.

constexpr char clap_state_id[] = "clap.state";

struct clap_plugin_state {
    bool (*save)(const clap_plugin* plugin, const clap_ostream* stream);
    bool (*load)(const clap_plugin* plugin, const clap_istream* stream);
};

constexpr char clap_tail_id[] = "clap.tail";

struct clap_plugin_tail {
    std::uint32_t (*get)(const clap_plugin* plugin) noexcept NONBLOCKING; ///< frames
};

constexpr char clap_voice_info_id[] = "clap.voice-info";

struct clap_voice_info {
    std::uint32_t voice_count;
    std::uint32_t voice_capacity;
    std::uint64_t flags;
};

struct clap_plugin_voice_info {
    bool (*get)(const clap_plugin* plugin, clap_voice_info* info);
};

// Records that cross the boundary have the published layout, whatever the compiler does.

static_assert(sizeof(void*) == 8 && sizeof(bool) == 1);
static_assert(sizeof(clap_version) == 12);
static_assert(sizeof(clap_istream) == 16);
static_assert(sizeof(clap_ostream) == 16);
static_assert(sizeof(clap_host) == 88 && offsetof(clap_host, host_data) == 16);
static_assert(sizeof(clap_plugin_descriptor) == 88 && offsetof(clap_plugin_descriptor, id) == 16);
static_assert(sizeof(clap_plugin) == 96 && offsetof(clap_plugin, init) == 16);
static_assert(sizeof(clap_plugin_factory) == 24);
static_assert(sizeof(clap_plugin_entry) == 40 && offsetof(clap_plugin_entry, init) == 16);
static_assert(sizeof(clap_event_header) == 16);
static_assert(sizeof(clap_event_transport) == 104
              && offsetof(clap_event_transport, song_pos_beats) == 24);
static_assert(sizeof(clap_event_note) == 40 && offsetof(clap_event_note, velocity) == 32);
static_assert(sizeof(clap_event_param_value) == 56);
static_assert(offsetof(clap_event_param_value, cookie) == 24);
static_assert(offsetof(clap_event_param_value, value) == 48);
static_assert(sizeof(clap_event_param_gesture) == 20);
static_assert(sizeof(clap_event_midi) == 24);
static_assert(sizeof(clap_input_events) == 24);
static_assert(sizeof(clap_output_events) == 16);
static_assert(sizeof(clap_audio_buffer) == 32);
static_assert(sizeof(clap_process) == 64 && offsetof(clap_process, transport) == 16);
static_assert(sizeof(clap_audio_port_info) == 288);
static_assert(offsetof(clap_audio_port_info, flags) == 260);
static_assert(offsetof(clap_audio_port_info, port_type) == 272);
static_assert(sizeof(clap_plugin_audio_ports) == 16);
static_assert(sizeof(clap_note_port_info) == 268);
static_assert(sizeof(clap_plugin_note_ports) == 16);
static_assert(sizeof(clap_param_info) == 1320 && offsetof(clap_param_info, module) == 272);
static_assert(offsetof(clap_param_info, min_value) == 1296);
static_assert(sizeof(clap_plugin_params) == 48);
static_assert(sizeof(clap_host_params) == 24);
static_assert(sizeof(clap_remote_controls_page) == 552);
static_assert(offsetof(clap_remote_controls_page, page_id) == 256);
static_assert(offsetof(clap_remote_controls_page, param_ids) == 516);
static_assert(sizeof(clap_plugin_remote_controls) == 16);
static_assert(sizeof(clap_window) == 16 && offsetof(clap_window, x11) == 8);
static_assert(sizeof(clap_plugin_gui) == 120);
static_assert(sizeof(clap_plugin_timer_support) == 8);
static_assert(sizeof(clap_host_timer_support) == 16);
static_assert(sizeof(clap_plugin_state) == 16);
static_assert(sizeof(clap_plugin_tail) == 8);
static_assert(sizeof(clap_voice_info) == 16);
static_assert(sizeof(clap_plugin_voice_info) == 8);
static_assert(sizeof(clap_universal_plugin_id) == 16);
static_assert(sizeof(clap_preset_discovery_location) == 32);
static_assert(offsetof(clap_preset_discovery_location, name) == 8);
static_assert(offsetof(clap_preset_discovery_location, location) == 24);
static_assert(sizeof(clap_preset_discovery_metadata_receiver) == 88);
static_assert(sizeof(clap_preset_discovery_indexer) == 88);
static_assert(offsetof(clap_preset_discovery_indexer, name) == 16);
static_assert(sizeof(clap_preset_discovery_provider_descriptor) == 40);
static_assert(offsetof(clap_preset_discovery_provider_descriptor, id) == 16);
static_assert(sizeof(clap_preset_discovery_provider) == 48);
static_assert(sizeof(clap_preset_discovery_factory) == 24);
static_assert(sizeof(clap_plugin_preset_load) == 8);
static_assert(sizeof(clap_host_preset_load) == 16);
