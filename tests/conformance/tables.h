#pragma once
/// The suite's tables, one a subject.

#include "conformance/trial.h"

table identity_rows();
table parameter_rows();
table program_rows();
table event_rows();
table onset_rows();
table pitch_rows();
table voice_rows();
table vibrato_rows();
table control_rows();
table bass_rows();
table block_rows();
table set_up_rows();
table instance_rows();
table processor_rows();
table panel_rows();
table panel_action_rows();
table panel_window_rows();
