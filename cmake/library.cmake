# SPDX-License-Identifier: MIT
# libux: its sources, how they are compiled, what the shared library exports.

set(UX_SOURCES
    core/blit.cpp
    core/child_walk.cpp
    core/framebuffer.cpp
    core/object_kit.cpp
    core/save_area.cpp
    core/uxContainer.cpp
    core/uxObject.cpp
    core/uxPage.cpp
    core/uxWidget.cpp
    event/event_message.cpp
    event/event_pipe.cpp
    event/uxEvent.cpp
    event/uxEvent_em862x.cpp
    event/uxTimer.cpp
    font/draw_string.cpp
    font/glyph_request.cpp
    font/string_buffer.cpp
    font/string_overlay.cpp
    font/glyph_session.cpp
    font/line_reader.cpp
    font/text_layout.cpp
    font/ticker.cpp
    font/ticker_band.cpp
    font/ticker_box.cpp
    font/utf8.cpp
    font/uxFont.cpp
    font/uxFontBoxDrawing.cpp
    font/uxFontDrawing.cpp
    font/uxFont_em862x.cpp
    graphics/blend.cpp
    graphics/effect.cpp
    graphics/jpeg_reader.cpp
    graphics/page_background.cpp
    graphics/placed_block.cpp
    graphics/png_reader.cpp
    graphics/rotate.cpp
    graphics/scale.cpp
    graphics/uxDraw.cpp
    graphics/uxImage.cpp
    graphics/uxImage_em862x.cpp
    graphics/yuv.cpp
    widgets/calendar_date.cpp
    widgets/clock_hands.cpp
    widgets/key_capture.cpp
    widgets/multi_tap.cpp
    widgets/sign.cpp
    widgets/uxButtonList.cpp
    widgets/uxCalendar.cpp
    widgets/uxCheckBox.cpp
    widgets/uxClock.cpp
    widgets/uxImageButton.cpp
    widgets/uxImageLabel.cpp
    widgets/uxMemo.cpp
    widgets/uxSelectBox.cpp
    widgets/uxSlider.cpp
    widgets/uxTextButton.cpp
    widgets/uxTextField.cpp
    widgets/uxTextLabel.cpp
    widgets/widget_kit.cpp
)

# Needs the C library, libpng and libjpeg: no exceptions, no RTTI, no guarded statics, no C++ run-time library.
add_library(ux-objects OBJECT ${UX_SOURCES})
target_include_directories(ux-objects PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
find_package(PNG REQUIRED)
find_package(JPEG REQUIRED)
target_link_libraries(ux-objects PUBLIC PNG::PNG JPEG::JPEG)
target_compile_options(ux-objects PRIVATE -fno-exceptions -fno-rtti -fno-threadsafe-statics)

# For unit tests: everything visible, the chip's functions chosen by the test.
add_library(ux-static STATIC $<TARGET_OBJECTS:ux-objects>)
target_include_directories(ux-static PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
find_package(Threads REQUIRED)
target_link_libraries(ux-static PUBLIC Threads::Threads PNG::PNG JPEG::JPEG)

# For hosts. The chip's functions stay undefined: the program brings the library that has them.
add_library(ux SHARED $<TARGET_OBJECTS:ux-objects>)
set_target_properties(ux PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    LINKER_LANGUAGE C
    LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/ux.map)
target_include_directories(ux INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
                                        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(ux PRIVATE Threads::Threads PNG::PNG JPEG::JPEG)
target_link_options(ux PRIVATE
    -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/ux.map -Wl,-z,relro,-z,now)
