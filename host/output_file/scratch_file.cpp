#include "output_file/scratch_file.h"

#include "failure/failure.h"
#include "platform/streams.h"

#include <cerrno>
#include <cstring>

scratch_file::scratch_file()
    : folder_{scratch_folder()}, p_stream_{open_scratch_file(folder_), std::fclose} {
    if (!p_stream_)
        fail(errno);
}

void scratch_file::fail(int error_number) const {
    throw failure{exit_failed, "cannot keep a temporary file in " + folder_.string() + ": "
                                   + std::strerror(error_number)
                                   + "; set TMPDIR to a folder with room"};
}

void scratch_file::write(const void* bytes, std::size_t nb_bytes) {
    if (std::fwrite(bytes, 1, nb_bytes, stream()) != nb_bytes)
        fail(errno);
}

void scratch_file::rewind() {
    if (std::fflush(stream()) != 0 || std::ferror(stream())
        || std::fseek(stream(), 0, SEEK_SET) != 0)
        fail(errno);
}

std::size_t scratch_file::read(void* bytes, std::size_t nb_bytes) {
    const std::size_t nb_read = std::fread(bytes, 1, nb_bytes, stream());
    if (std::ferror(stream()))
        fail(errno);
    return nb_read;
}
