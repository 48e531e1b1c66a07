// SPDX-License-Identifier: MIT
// The screen of golden tests; see golden_test.h.

#include "tests/golden/golden_test.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr uint32_t k_difference = 0xFFFF0000;

bool renewing() {
    const char *value = getenv("UX_GOLDEN_RENEW");
    return value && strcmp(value, "1") == 0;
}

// Stripes that tell every pixel from its neighbours: diagonal bands, redder to the right, bluer
// downwards.
uint32_t stripe(int x, int y) {
    constexpr int k_band = 6;
    const uint32_t red = static_cast<uint32_t>(40 + x * 3 % 160);
    const uint32_t green = (x + y) / k_band % 2 == 0 ? 90 : 60;
    const uint32_t blue = static_cast<uint32_t>(60 + y * 5 % 180);
    return 0xFF000000 | red << 16 | green << 8 | blue;
}

uint16_t to_565(uint32_t color) {
    return static_cast<uint16_t>((color >> 8 & 0xF800) | (color >> 5 & 0x07E0) |
                                 (color >> 3 & 0x001F));
}

// One to one: the upper bits of each channel are repeated below.
uint32_t from_565(uint32_t pixel) {
    const uint32_t red = pixel >> 11;
    const uint32_t green = pixel >> 5 & 0x3F;
    const uint32_t blue = pixel & 0x1F;
    return 0xFF000000 | (red << 3 | red >> 2) << 16 | (green << 2 | green >> 4) << 8 |
           (blue << 3 | blue >> 2);
}

// The picture darkened, red where it differs from the reference; sizes that differ make all red.
golden::picture difference(const golden::picture &actual, const golden::picture &reference) {
    const bool comparable = actual.width == reference.width && actual.height == reference.height;
    golden::picture result = actual;
    for (size_t i = 0; i < actual.pixels.size(); i++) {
        const bool same = comparable && actual.pixels[i] == reference.pixels[i];
        result.pixels[i] = same ? 0xFF000000 | (actual.pixels[i] >> 2 & 0x3F3F3F) : k_difference;
    }
    return result;
}

std::string write_result(const std::string &name, const golden::picture &picture) {
    const std::string path = std::string(UX_GOLDEN_RESULTS) + "/" + name + ".png";
    return golden::write_png(path, picture) ? path : "can not write " + path;
}

} // namespace

// The pictures are made with the font that is found without being told.
void GoldenTest::SetUp() {
    unsetenv("EM862X_FONT");
    unsetenv("FontSize");
    main_screen = {};
}

void GoldenTest::TearDown() {
    if (main_screen.page_count == 0)
        return;
    for (ux_obj *child = root()->children; child;) {
        ux_obj *next = child->next;
        child->free(child);
        child = next;
    }
    ux_obj_free(&root()->obj);
    main_screen = {};
}

void GoldenTest::make_screen(int width, int height, int color_mode) {
    main_screen.width = main_screen.xres = width;
    main_screen.height = main_screen.yres = height;
    main_screen.color_mode = color_mode;
    main_screen.bytes_per_pixel = color_mode == UX_COLOR_MODE_RGB565 ? 2 : 4;
    m_memory.assign(static_cast<size_t>(width * height * main_screen.bytes_per_pixel), 0);
    main_screen.buf = main_screen.fb = m_memory.data();
    paint_stripes();
    ASSERT_EQ(ux_page_new(), 0);
}

void GoldenTest::paint_stripes() {
    for (int y = 0; y < main_screen.height; y++)
        for (int x = 0; x < main_screen.width; x++) {
            const size_t element = static_cast<size_t>(y * main_screen.width + x);
            const uint32_t color = stripe(x, y);
            const uint16_t word = to_565(color);
            if (main_screen.color_mode == UX_COLOR_MODE_RGB565)
                memcpy(m_memory.data() + element * sizeof word, &word, sizeof word);
            else
                memcpy(m_memory.data() + element * sizeof color, &color, sizeof color);
        }
}

golden::picture GoldenTest::painted() const {
    golden::picture result{main_screen.width, main_screen.height, {}};
    const size_t bytes = static_cast<size_t>(main_screen.bytes_per_pixel);
    for (size_t at = 0; at < m_memory.size(); at += bytes) {
        uint32_t pixel = 0;
        memcpy(&pixel, m_memory.data() + at, bytes);
        result.pixels.push_back(bytes == sizeof pixel ? pixel : from_565(pixel));
    }
    return result;
}

void GoldenTest::expect_golden(const std::string &name, const std::string &folder) {
    const std::string reference_path = folder + "/" + name + ".png";
    const golden::picture actual = painted();
    if (renewing()) {
        ASSERT_TRUE(golden::write_png(reference_path, actual)) << reference_path;
        printf("renewed: %s\n", reference_path.c_str());
        return;
    }
    const std::optional<golden::picture> reference = golden::read_png(reference_path);
    if (reference && *reference == actual)
        return;
    ADD_FAILURE() << (reference ? "differs from " : "no reference ") << reference_path
                  << "\n  painted:    " << write_result(name + "-actual", actual)
                  << "\n  difference: "
                  << write_result(name + "-diff",
                                  difference(actual, reference.value_or(golden::picture{})));
}
