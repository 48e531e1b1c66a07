// SPDX-License-Identifier: MIT
// The calendar: one month as a grid of pictures with numbers, beside the month's name and the year.

#include "graphics/image_stamp.h"
#include "widgets/calendar_date.h"
#include "widgets/widget_kit.h"

#include <cstdio>

namespace ux {
namespace {

constexpr uint32_t k_ink = 0xFF202020;
constexpr uint32_t k_weekend_ink = 0xFFFF0000;
constexpr uint32_t k_header_color = 0xFF303080;
constexpr uint32_t k_header_ink = 0xFFFFFFFF;

// The column on the left, screen pixels.
constexpr rect k_month_box = {20, 50, 150, 120};
constexpr rect k_name_box = {20, 170, 150, 30};
constexpr rect k_year_box = {20, 200, 150, 30};

// The grid, screen pixels.
constexpr int k_grid_left = 178;
constexpr int k_header_top = 50;
constexpr int k_header_height = 25;
constexpr int k_grid_top = 80;
constexpr int k_grid_rows = 6;
constexpr int k_column_gap = 3;
constexpr int k_row_gap = 5;
constexpr int k_number_inset = 6;
constexpr int k_number_parts = 3; // a number takes the upper one of a cell

constexpr int k_fit_size = 0;
constexpr int k_centered = 4;

constexpr int k_first_year = 2009;

constexpr const char16_t *cal_month[k_months] = {
    u"JANUARY", u"FEBRUARY", u"MARCH",     u"APRIL",   u"MAY",      u"JUNE",
    u"JULY",    u"AUGUST",   u"SEPTEMBER", u"OCTOBER", u"NOVEMBER", u"DECEMBER"};
constexpr const char *cal_week[k_weekdays] = {"SUN", "MON", "TUE", "WED", "THU", "FRI", "SAT"};

// Sizes of the grid, pixels.
struct calendar_grid {
    int cell_width;
    int cell_height;
    int row_pitch;
};

// The width is rounded down to an even number last.
calendar_grid grid_of(const ux_obj *obj) {
    const int64_t width = (int64_t{obj->width} - k_grid_left) / k_weekdays - k_column_gap;
    const int64_t pitch = (int64_t{obj->height} - k_grid_top) / k_grid_rows;
    return {static_cast<int>(width - (width & 1)), static_cast<int>(pitch - k_row_gap),
            static_cast<int>(pitch)};
}

int column_left(const calendar_grid &grid, int column) {
    return coordinate(k_grid_left + int64_t{column} * (grid.cell_width + k_column_gap));
}

bool is_weekend(int column) {
    return column == 0 || column == k_weekdays - 1;
}

void paint_month(int year, int month, int size) {
    paint_number(month, k_ink, UX_COLOR_NONE, k_month_box, size);
    paint_text(cal_month[month - 1], k_ink, UX_COLOR_NONE, k_name_box, size);
    paint_number(year, k_ink, UX_COLOR_NONE, k_year_box, size);
}

void paint_header(const calendar_grid &grid) {
    for (int i = 0; i < k_weekdays; i++) {
        const int left = column_left(grid, i);
        uxDrawBox(left, k_header_top, coordinate(int64_t{left} + grid.cell_width - 1),
                  k_header_top + k_header_height - 1, k_header_color);
        ux_draw_string(cal_week[i], k_fit_size, is_weekend(i) ? k_weekend_ink : k_header_ink,
                       UX_COLOR_NONE, left, k_header_top, grid.cell_width, k_header_height,
                       k_centered);
    }
}

// The day's number in the upper third of its cell.
void paint_day(int day, uint32_t ink, const calendar_grid &grid, int left, int top, int size) {
    const rect box = {coordinate(int64_t{left} + k_number_inset),
                      coordinate(int64_t{top} + k_number_inset),
                      coordinate(int64_t{grid.cell_width} - 2 * k_number_inset),
                      grid.cell_height / k_number_parts};
    paint_number(day, ink, UX_COLOR_NONE, box, size);
}

// `first` is the column of the month's first day.
void paint_days(const ux_calendar *calendar, const calendar_grid &grid, int first, int days,
                int size) {
    char path[UX_PATH_BYTES + sizeof "/black.png"];
    snprintf(path, sizeof path, "%s/black.png", calendar->image_dir);
    image_stamp cell(path, grid.cell_width, grid.cell_height);
    for (int day = 1; day <= days; day++) {
        const int place = first + day - 1;
        const int column = place % k_weekdays;
        const int left = column_left(grid, column);
        const int top = coordinate(k_grid_top + int64_t{place / k_weekdays} * grid.row_pitch);
        cell.draw_at(left, top);
        paint_day(day, is_weekend(column) ? k_weekend_ink : k_ink, grid, left, top, size);
    }
}

// Remainders below 0, of years below 1, are of the same day of the week 7 further.
int first_column(int year, int month) {
    return (weekday(year, month, 1) + k_weekdays) % k_weekdays;
}

constexpr object_prototype k_calendar = {
    .type = UX_TYPE_CALENDAR,
    .flags = UX_FLAG_SAVE_BG, // told to hosts; nothing is ever saved
    .show = ux_calendar_show,
    .hide = ux_calendar_hide,
    .repaint = ux_calendar_repaint,
    .set_focus = ux_calendar_set_focus,
    .unset_focus = ux_calendar_unset_focus,
    .set_select = nullptr,
    .unset_select = nullptr,
};

} // namespace
} // namespace ux

ux_calendar *ux_calendar_new(ux_container *parent, int x, int y, int w, int h,
                             const char *image_dir) noexcept {
    auto *calendar = ux::allocate<ux_calendar>("Not enough memory space for calendar!\n");
    if (calendar)
        ux_calendar_init(parent, calendar, x, y, w, h, image_dir);
    return calendar;
}

int ux_calendar_init(ux_container *parent, ux_calendar *calendar, int x, int y, int w, int h,
                     const char *image_dir) noexcept {
    ux::init_object(&calendar->obj, ux::k_calendar, parent, {x, y, w, h});
    ux_calendar_set_images(calendar, image_dir);
    return ux_calendar_set_date(calendar, ux::k_first_year, 1, 1);
}

int ux_calendar_set_images(ux_calendar *calendar, const char *image_dir) noexcept {
    ux::copy_path(calendar->image_dir, image_dir);
    return 0;
}

int ux_calendar_set_date(ux_calendar *calendar, int year, int month, int day) noexcept {
    calendar->shown_year = calendar->year = static_cast<int16_t>(year);
    calendar->shown_month = calendar->month = static_cast<int16_t>(month);
    calendar->shown_day = calendar->day = static_cast<int16_t>(day);
    calendar->shown_weekday = calendar->weekday =
        static_cast<int16_t>(ux::weekday(calendar->year, calendar->month, calendar->day));
    calendar->reserved = 0;
    return 0;
}

int ux_calendar_get_week(int year, int month, int day) noexcept {
    return ux::weekday(year, month, day);
}

int ux_calendar_show(ux_obj *obj) noexcept {
    if (!ux::begin_show(obj))
        return 0;
    auto *calendar = ux::as<ux_calendar>(obj);
    calendar->reserved = 0;
    const int year = calendar->shown_year;
    const int month = calendar->shown_month;
    if (month < 1 || month > ux::k_months)
        return 0;
    const ux::calendar_grid grid = ux::grid_of(obj);
    const int size = ux::font_size(ux::k_default_font_size);
    ux::paint_month(year, month, size);
    ux::paint_header(grid);
    ux::paint_days(calendar, grid, ux::first_column(year, month), ux::days_of_month(year, month),
                   size);
    ux_object_update(obj);
    return 0;
}

// The screen sees it at the next update.
int ux_calendar_hide(ux_obj *obj) noexcept {
    ux_obj_hide(obj);
    if (ux::on_current_page(obj))
        ux::paint_fill(obj, UX_COLOR_NONE);
    return 0;
}

int ux_calendar_repaint(ux_obj *obj) noexcept {
    return ux::show_or_hide(obj, ux_calendar_show, ux_calendar_hide);
}

int ux_calendar_set_focus(ux_obj *obj) noexcept {
    return ux::take_focus(obj);
}

int ux_calendar_unset_focus(ux_obj *obj) noexcept {
    return ux::clear_state(obj, UX_ST_FOCUSED);
}
