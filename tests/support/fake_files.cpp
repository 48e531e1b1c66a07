// SPDX-License-Identifier: MIT
// The chip's files for unit tests: ordinary files by stdio, and addresses that a test maps to such.

#include "tests/support/fake_files.h"

#include "tests/support/fake_chip.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include <jpeglib.h>

struct rm_file {
    FILE *stream;
};

using fake_chip::get;

namespace {

uint32_t s_largest_read = UINT32_MAX; // bytes that RMReadFile gives at once

rm_file *opened(FILE *stream) {
    if (!stream)
        return nullptr;
    get().open_files++;
    return new rm_file{stream};
}

// libjpeg's own source over the same stream.
int read_stream(void *cookie, void *data, uint32_t bytes, uint32_t *read_bytes) {
    return RMReadFile(static_cast<rm_file *>(cookie), data, bytes, read_bytes);
}

int close_stream(void *cookie) {
    return RMCloseFile(static_cast<rm_file *>(cookie));
}

} // namespace

fake_files::short_reads::short_reads(uint32_t bytes) {
    s_largest_read = bytes;
}

fake_files::short_reads::~short_reads() {
    s_largest_read = UINT32_MAX;
}

rm_file *RMOpenFile(const rm_non_ascii *path, int mode) {
    const auto *name = reinterpret_cast<const std::string *>(path);
    get().calls.push_back("RMOpenFile " + *name + " " + std::to_string(mode));
    const auto found = get().files.find(*name);
    return opened(fopen((found == get().files.end() ? *name : found->second).c_str(), "rb"));
}

int RMReadFile(rm_file *file, void *data, uint32_t bytes, uint32_t *read_bytes) {
    if (get().fail_read_after >= 0 && get().fail_read_after-- == 0)
        return EM862X_FAILURE;
    *read_bytes =
        static_cast<uint32_t>(fread(data, 1, std::min(bytes, s_largest_read), file->stream));
    return *read_bytes > 0 ? EM862X_SUCCESS : EM862X_FAILURE;
}

int RMCloseFile(rm_file *file) {
    get().calls.emplace_back("RMCloseFile");
    get().open_files--;
    fclose(file->stream);
    delete file;
    return get().close_file_result;
}

void *fetchOpen(const char *url, int flags) {
    get().calls.push_back(std::string("fetchOpen ") + url + " " + std::to_string(flags));
    const auto found = get().addresses.find(url);
    return found == get().addresses.end() ? nullptr : opened(fopen(found->second.c_str(), "rb"));
}

void fetchClose(void *cookie) {
    get().calls.emplace_back("fetchClose");
    close_stream(cookie);
}

const rm_file_ops httpFileOps = {read_stream, close_stream};

rm_file *RMOpenFileCookie(void *cookie, int mode, const rm_file_ops *ops) {
    get().calls.push_back("RMOpenFileCookie " + std::to_string(mode));
    return get().wrap_fails || ops != &httpFileOps ? nullptr : static_cast<rm_file *>(cookie);
}

void jpeg_stdio_src_rm_file(jpeg_decompress_struct *cinfo, rm_file *file) {
    jpeg_stdio_src(cinfo, file->stream);
}
