/* SPDX-License-Identifier: MIT */
/*
 * The JPEG source beside libjpeg's own over a stdio stream: same rows, same warnings, same errors.
 */
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <functional>

#include <jpeglib.h>

#include <jerror.h>

#include "tests/platform/http_fixture.h"
#include "tests/platform/probes.h"

namespace {

/* What a decoder made of a file. */
struct decoded {
    int error = 0; /* libjpeg's message code, 0: none */
    long warnings = 0;
    std::string rows;

    bool operator==(const decoded &) const = default;
};

std::ostream &operator<<(std::ostream &out, const decoded &result) {
    return out << "error " << result.error << ", " << result.warnings << " warnings, "
               << result.rows.size() << " bytes of rows";
}

struct jumping_errors {
    jpeg_error_mgr base;
    jmp_buf back;
};

[[noreturn]] void jump_back(j_common_ptr cinfo) {
    std::longjmp(reinterpret_cast<jumping_errors *>(cinfo->err)->back, 1);
}

/* Makes `cinfo` a decompressor whose errors jump; the caller sets the jump's target. */
void create(jpeg_decompress_struct &cinfo, jumping_errors &errors) {
    std::memset(&cinfo, 0, sizeof(cinfo));
    cinfo.err = jpeg_std_error(&errors.base);
    errors.base.error_exit = jump_back;
    errors.base.output_message = [](j_common_ptr) {};
    jpeg_create_decompress(&cinfo);
}

/* Decodes from the source that `attach` gives the decompressor. */
decoded decode(const std::function<void(j_decompress_ptr)> &attach) {
    decoded result;
    std::string row;
    jpeg_decompress_struct cinfo;
    jumping_errors errors;
    create(cinfo, errors);
    if (setjmp(errors.back) == 0) {
        attach(&cinfo);
        jpeg_read_header(&cinfo, TRUE);
        jpeg_start_decompress(&cinfo);
        row.resize(std::size_t{cinfo.output_width} * cinfo.output_components);
        while (cinfo.output_scanline < cinfo.output_height) {
            auto *target = reinterpret_cast<JSAMPROW>(row.data());
            jpeg_read_scanlines(&cinfo, &target, 1);
            result.rows += row;
        }
        jpeg_finish_decompress(&cinfo);
    } else {
        result.error = errors.base.msg_code;
    }
    result.warnings = errors.base.num_warnings;
    jpeg_destroy_decompress(&cinfo);
    return result;
}

decoded decode_file(rm_file *file) {
    return decode([&](j_decompress_ptr cinfo) { jpeg_stdio_src_rm_file(cinfo, file); });
}

/* A file over bytes in memory, which gives them in small pieces and may end with a failure. */
struct memory_source {
    std::string bytes;
    int end_result = EM862X_SUCCESS;
    std::size_t at = 0;
};

constexpr rm_file_ops k_memory_ops = {
    [](void *cookie, void *data, std::uint32_t bytes, std::uint32_t *read_bytes) {
        constexpr std::size_t piece_max = 1000;
        auto &from = *static_cast<memory_source *>(cookie);
        const std::size_t count =
            std::min({std::size_t{bytes}, piece_max, from.bytes.size() - from.at});
        std::memcpy(data, from.bytes.data() + from.at, count);
        from.at += count;
        *read_bytes = static_cast<std::uint32_t>(count);
        return count > 0 ? int{EM862X_SUCCESS} : from.end_result;
    },
    [](void *) { return int{EM862X_SUCCESS}; }};

decoded decode_bytes(const std::string &bytes, int end_result = EM862X_SUCCESS) {
    memory_source from{bytes, end_result};
    rm_file *file = RMOpenFileCookie(&from, 0, &k_memory_ops);
    decoded result = decode_file(file);
    RMCloseFile(file);
    return result;
}

/* libjpeg's own source over the same bytes. */
decoded decode_stream(const std::string &bytes) {
    std::FILE *stream = std::tmpfile();
    if (!stream || std::fwrite(bytes.data(), 1, bytes.size(), stream) != bytes.size())
        return {-1, -1, "no temporary file"};
    std::rewind(stream);
    decoded result = decode([&](j_decompress_ptr cinfo) { jpeg_stdio_src(cinfo, stream); });
    std::fclose(stream);
    return result;
}

/* A picture of noise; `comment` bytes of a marker that decoders skip come first. */
std::string make_jpeg(unsigned width, unsigned height, unsigned comment = 0) {
    jpeg_compress_struct cinfo = {};
    jpeg_error_mgr errors;
    cinfo.err = jpeg_std_error(&errors);
    jpeg_create_compress(&cinfo);
    unsigned char *bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&cinfo, &bytes, &size);
    cinfo.image_width = width;
    cinfo.image_height = height;
    cinfo.input_components = 3;
    cinfo.in_color_space = JCS_RGB;
    jpeg_set_defaults(&cinfo);
    jpeg_start_compress(&cinfo, TRUE);
    if (comment > 0)
        jpeg_write_marker(&cinfo, JPEG_COM,
                          reinterpret_cast<const JOCTET *>(random_bytes(comment).data()), comment);
    const std::size_t row_bytes = std::size_t{3} * width;
    std::string pixels = random_bytes(row_bytes * height);
    while (cinfo.next_scanline < height) {
        auto *source = reinterpret_cast<JSAMPROW>(pixels.data() + row_bytes * cinfo.next_scanline);
        jpeg_write_scanlines(&cinfo, &source, 1);
    }
    jpeg_finish_compress(&cinfo);
    jpeg_destroy_compress(&cinfo);
    std::string result(reinterpret_cast<char *>(bytes), size);
    std::free(bytes);
    return result;
}

using jpeg_source_test = http_fixture;

TEST_F(jpeg_source_test, pictures_decode_as_from_a_stdio_stream) {
    for (const unsigned size : {1u, 8u, 37u, 120u, 400u}) {
        const std::string jpeg = make_jpeg(size, size + 3);
        const decoded result = decode_bytes(jpeg);
        EXPECT_EQ(result.error, 0);
        EXPECT_EQ(result.warnings, 0);
        EXPECT_EQ(result.rows.size(), std::size_t{3} * size * (size + 3));
        EXPECT_EQ(result, decode_stream(jpeg)) << jpeg.size() << " bytes";
    }
}

TEST_F(jpeg_source_test, pictures_cut_anywhere_decode_as_from_a_stdio_stream) {
    const std::string jpeg = make_jpeg(200, 150);
    ASSERT_GT(jpeg.size(), 3u * 4096) << "more than a few buffers";
    for (std::size_t length = 0; length < jpeg.size(); length += 211) {
        const std::string cut = jpeg.substr(0, length);
        const decoded result = decode_bytes(cut);
        EXPECT_TRUE(result.error != 0 || result.warnings > 0) << length;
        EXPECT_EQ(result, decode_stream(cut)) << length;
    }
}

TEST_F(jpeg_source_test, a_failing_read_ends_the_data_there) {
    const std::string jpeg = make_jpeg(150, 80);
    for (const std::size_t length : {0u, 1u, 700u, 4096u, 9000u}) {
        const std::string cut = jpeg.substr(0, length);
        EXPECT_EQ(decode_bytes(cut, EM862X_FAILURE), decode_stream(cut)) << length;
    }
}

TEST_F(jpeg_source_test, damaged_pictures_decode_as_from_a_stdio_stream) {
    const std::string jpeg = make_jpeg(100, 60, 5000);
    std::mt19937 random(11);
    for (int round = 0; round < 100; round++) {
        std::string damaged = jpeg;
        for (int i = 0; i < 1 + round % 10; i++)
            damaged[random() % damaged.size()] = static_cast<char>(random());
        const decoded expected = decode_stream(damaged);
        ASSERT_EQ(decode_bytes(damaged), expected) << "round " << round;
    }
}

TEST_F(jpeg_source_test, an_empty_file_is_the_error_of_empty_input) {
    EXPECT_EQ(decode_bytes(""), (decoded{JERR_INPUT_EMPTY, 0, ""}));
    EXPECT_EQ(decode_file(nullptr), (decoded{JERR_INPUT_EMPTY, 0, ""}));
}

TEST_F(jpeg_source_test, markers_longer_than_the_buffer_are_skipped) {
    for (const unsigned comment : {4000u, 4096u, 5000u, 65533u}) {
        const std::string jpeg = make_jpeg(20, 20, comment);
        const decoded result = decode_bytes(jpeg);
        EXPECT_EQ(result.error, 0);
        EXPECT_EQ(result.warnings, 0);
        EXPECT_EQ(result, decode_stream(jpeg)) << comment;
    }
}

TEST_F(jpeg_source_test, a_skip_past_the_end_finds_the_end_marker) {
    const std::string jpeg = make_jpeg(20, 20, 60000);
    for (const std::size_t length : {50u, 4096u, 30000u}) {
        const std::string cut = jpeg.substr(0, length);
        const decoded result = decode_bytes(cut);
        EXPECT_NE(result.error, 0);
        EXPECT_EQ(result, decode_stream(cut)) << length;
    }
}

TEST_F(jpeg_source_test, a_skip_moves_by_just_the_bytes_asked_for) {
    memory_source from{random_bytes(10000)};
    rm_file *file = RMOpenFileCookie(&from, 0, &k_memory_ops);
    jpeg_decompress_struct cinfo;
    jumping_errors errors;
    create(cinfo, errors);
    ASSERT_EQ(setjmp(errors.back), 0);
    jpeg_stdio_src_rm_file(&cinfo, file);
    cinfo.src->init_source(&cinfo);
    EXPECT_EQ(cinfo.src->bytes_in_buffer, 0u) << "nothing is read ahead";
    ASSERT_TRUE(cinfo.src->fill_input_buffer(&cinfo));
    EXPECT_EQ(cinfo.src->bytes_in_buffer, 4096u);
    std::size_t at = 0;
    for (const long skip : {0L, -5L, 1L, 4000L, 95L, 1L, 5000L}) {
        cinfo.src->skip_input_data(&cinfo, skip);
        at += static_cast<std::size_t>(std::max(skip, 0L));
        if (cinfo.src->bytes_in_buffer > 0) {
            EXPECT_EQ(static_cast<char>(*cinfo.src->next_input_byte), from.bytes[at]) << at;
        }
    }
    cinfo.src->skip_input_data(&cinfo, 903);
    EXPECT_EQ(cinfo.src->bytes_in_buffer, 0u) << "all 10000 are used up";
    EXPECT_EQ(errors.base.num_warnings, 0);
    ASSERT_TRUE(cinfo.src->fill_input_buffer(&cinfo));
    EXPECT_EQ(errors.base.num_warnings, 1);
    ASSERT_EQ(cinfo.src->bytes_in_buffer, 2u);
    EXPECT_EQ(cinfo.src->next_input_byte[0], 0xFF);
    EXPECT_EQ(cinfo.src->next_input_byte[1], JPEG_EOI);
    jpeg_destroy_decompress(&cinfo);
    RMCloseFile(file);
}

TEST_F(jpeg_source_test, the_file_stays_open_for_its_owner) {
    const std::string jpeg = make_jpeg(8, 8);
    memory_source from{jpeg + std::string(5000, 'x')};
    rm_file *file = RMOpenFileCookie(&from, 0, &k_memory_ops);
    EXPECT_EQ(decode_file(file).error, 0);
    char byte = 0;
    std::uint32_t count = 0;
    EXPECT_EQ(RMReadFile(file, &byte, 1, &count), EM862X_SUCCESS);
    EXPECT_EQ(byte, 'x');
    EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
}

TEST_F(jpeg_source_test, one_decompressor_reads_one_file_after_the_other) {
    const std::string jpeg = make_jpeg(16, 16);
    memory_source first{jpeg};
    memory_source second{jpeg};
    rm_file *files[] = {RMOpenFileCookie(&first, 0, &k_memory_ops),
                        RMOpenFileCookie(&second, 0, &k_memory_ops)};
    jpeg_decompress_struct cinfo;
    jumping_errors errors;
    create(cinfo, errors);
    ASSERT_EQ(setjmp(errors.back), 0);
    const jpeg_source_mgr *source = nullptr;
    for (rm_file *file : files) {
        jpeg_stdio_src_rm_file(&cinfo, file);
        EXPECT_TRUE(!source || source == cinfo.src) << "its memory is used again";
        source = cinfo.src;
        EXPECT_EQ(jpeg_read_header(&cinfo, TRUE), JPEG_HEADER_OK);
        EXPECT_EQ(cinfo.image_width, 16u);
        jpeg_abort_decompress(&cinfo);
    }
    jpeg_destroy_decompress(&cinfo);
    for (rm_file *file : files)
        RMCloseFile(file);
}

TEST_F(jpeg_source_test, another_source_is_replaced) {
    std::string jpeg = make_jpeg(16, 16);
    const decoded result = decode([&](j_decompress_ptr cinfo) {
        jpeg_mem_src(cinfo, reinterpret_cast<const unsigned char *>(jpeg.data()), jpeg.size());
        jpeg_stdio_src_rm_file(cinfo, nullptr);
    });
    EXPECT_EQ(result, (decoded{JERR_INPUT_EMPTY, 0, ""}));
}

TEST_F(jpeg_source_test, nothing_is_touched_after_an_error_exit_that_destroys_and_returns) {
    for (const bool skip : {false, true}) {
        jpeg_decompress_struct cinfo;
        jumping_errors errors;
        create(cinfo, errors);
        errors.base.error_exit = [](j_common_ptr common) { jpeg_destroy(common); };
        jpeg_stdio_src_rm_file(&cinfo, nullptr);
        cinfo.src->init_source(&cinfo);
        if (skip)
            cinfo.src->skip_input_data(&cinfo, 100000);
        else
            EXPECT_FALSE(cinfo.src->fill_input_buffer(&cinfo));
        EXPECT_EQ(errors.base.msg_code, JERR_INPUT_EMPTY);
    }
}

TEST_F(jpeg_source_test, no_memory_is_libjpegs_error) {
    const decoded result = decode([](j_decompress_ptr cinfo) {
        cinfo->mem->alloc_small = [](j_common_ptr common, int, std::size_t) -> void * {
            ERREXIT1(common, JERR_OUT_OF_MEMORY, 1);
            return nullptr;
        };
        jpeg_stdio_src_rm_file(cinfo, nullptr);
    });
    EXPECT_EQ(result, (decoded{JERR_OUT_OF_MEMORY, 0, ""}));
}

TEST_F(jpeg_source_test, a_missing_or_unmade_decompressor_is_left_alone) {
    jpeg_stdio_src_rm_file(nullptr, nullptr);
    jpeg_decompress_struct unmade = {};
    jpeg_stdio_src_rm_file(&unmade, nullptr);
    EXPECT_EQ(unmade.src, nullptr);
}

TEST_F(jpeg_source_test, a_picture_comes_from_a_server_as_from_a_stdio_stream) {
    const std::string jpeg = make_jpeg(300, 200);
    const http_server server([&](http_connection &client) { client.send(http_answer(jpeg)); });
    rm_file *file = RMOpenFileCookie(fetchOpen(server.url("/a.jpg").c_str(), 0), 0, &httpFileOps);
    ASSERT_NE(file, nullptr);
    const decoded result = decode_file(file);
    EXPECT_EQ(result.error, 0);
    EXPECT_EQ(result, decode_stream(jpeg));
    EXPECT_EQ(RMCloseFile(file), EM862X_SUCCESS);
}

} // namespace
