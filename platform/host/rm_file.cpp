/* SPDX-License-Identifier: MIT */
/*
 * The file calls: opening local files, and filling read requests from whatever a file stands on.
 */
#include "platform/host/rm_file.h"

#include "platform/host/rm_non_ascii.h"

#include <cstdio>
#include <new>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int k_read_mode = 0;

/* The cookie of a local file is its stdio stream. */
int read_stream(void *cookie, void *data, uint32_t bytes, uint32_t *read_bytes) noexcept {
    FILE *stream = static_cast<FILE *>(cookie);
    *read_bytes = static_cast<uint32_t>(std::fread(data, 1, bytes, stream));
    return *read_bytes == 0 && std::ferror(stream) ? EM862X_FAILURE : EM862X_SUCCESS;
}

int close_stream(void *cookie) noexcept {
    return std::fclose(static_cast<FILE *>(cookie)) == 0 ? EM862X_SUCCESS : EM862X_FAILURE;
}

constexpr rm_file_ops k_stream_ops = {read_stream, close_stream};

/* A descriptor of a regular file, or -1. O_NONBLOCK: opening a pipe must not hang us. */
int open_regular(const char *path) noexcept {
    const int file = open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (file < 0)
        return -1;
    struct stat status = {};
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode))
        return file;
    close(file);
    return -1;
}

/* Null when the path is no regular file or memory runs out. */
FILE *open_stream(const char *path) noexcept {
    const int file = open_regular(path);
    if (file < 0)
        return nullptr;
    FILE *stream = fdopen(file, "rb");
    if (!stream)
        close(file);
    return stream;
}

} // namespace

rm_file *RMOpenFile(const rm_non_ascii *path, int mode) {
    if (!path || mode != k_read_mode)
        return nullptr;
    FILE *stream = open_stream(path->text.c_str());
    if (!stream)
        return nullptr;
    rm_file *file = RMOpenFileCookie(stream, mode, &k_stream_ops);
    if (!file)
        close_stream(stream);
    return file;
}

rm_file *RMOpenFileCookie(void *cookie, int mode, const rm_file_ops *ops) {
    if (!cookie || mode != k_read_mode || !ops || !ops->read || !ops->close)
        return nullptr;
    return new (std::nothrow) rm_file{cookie, *ops};
}

int RMReadFile(rm_file *file, void *data, uint32_t bytes, uint32_t *read_bytes) {
    if (!read_bytes)
        return EM862X_FAILURE;
    *read_bytes = 0;
    if (!file || (!data && bytes != 0))
        return EM862X_FAILURE;
    while (*read_bytes < bytes) {
        const uint32_t wanted = bytes - *read_bytes;
        uint32_t count = 0;
        if (file->ops.read(file->cookie, static_cast<char *>(data) + *read_bytes, wanted, &count) !=
                EM862X_SUCCESS ||
            count > wanted)
            return EM862X_FAILURE;
        if (count == 0)
            return *read_bytes > 0 ? EM862X_SUCCESS : EM862X_FAILURE;
        *read_bytes += count;
    }
    return EM862X_SUCCESS;
}

int RMCloseFile(rm_file *file) {
    if (!file)
        return EM862X_FAILURE;
    const int result = file->ops.close(file->cookie);
    delete file;
    return result == EM862X_SUCCESS ? EM862X_SUCCESS : EM862X_FAILURE;
}
