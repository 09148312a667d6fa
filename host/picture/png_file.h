#pragma once
/// Pictures as PNG files. The same picture gives the same bytes: no dates are put in.

#include "output_file/output_file.h"
#include "platform/editor_window.h"

/// Writes the picture with each pixel as a sharp square of `scale` by `scale`, and puts the output
/// in its place. Throws a failure.
void png_file_write(output_file& output, const picture& shown, int scale);
