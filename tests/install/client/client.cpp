// SPDX-License-Identifier: MIT
// A host in C++ as a stranger builds it: against an installed library only. It converts a text,
// gives a button the focus and looks at the border's colour.
#include <array>
#include <cstdint>
#include <iostream>

#include <ux.h>

int main() {
    constexpr int width = 160;
    constexpr int height = 40;
    static std::array<std::uint32_t, width * height> screen;
    main_screen.width = main_screen.xres = width;
    main_screen.height = main_screen.yres = height;
    main_screen.bytes_per_pixel = 4;
    main_screen.color_mode = UX_COLOR_MODE_ARGB8888;
    main_screen.fb = main_screen.buf = reinterpret_cast<std::uint8_t *>(screen.data());

    std::array<char16_t, UX_TEXT_UNITS> text{};
    if (ux_text_from_utf8(text.data(), text.size(),
                          "Zur\xC3\xBC"
                          "ck") != 6 ||
        text[3] != u'\u00FC' || ux_page_new() != 0)
        return 1;
    ux_container *page = &ux_current_page()->container;
    ux_text_button *button = ux_text_button_new(page, 10, 5, 100, 30, text.data());
    if (button == nullptr)
        return 1;
    ux_text_button_set_border(button, 2);
    ux_obj_set_focus(&button->obj);

    const std::uint32_t corner = screen[5 * width + 10];
    std::cout << std::hex << "corner " << corner << '\n';
    return corner == UX_COLOR_BORDER_FOCUS ? 0 : 1;
}
