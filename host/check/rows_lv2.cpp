#include "check/rows.h"

table lv2_rows() { return {}; }
