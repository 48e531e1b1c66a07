// SPDX-License-Identifier: MIT
// The size of all texts: one environment variable, read at every paint.
#ifndef UX_EXAMPLES_TEXT_SIZE_H
#define UX_EXAMPLES_TEXT_SIZE_H

#include <cstdlib>
#include <cstring>
#include <string>

#include <ux.h>

inline char *s_text_size_digits = nullptr;
inline int s_usual_text_size = 0;

// To be called before any thread starts. From then on only the two digits change, in place, and
// only the thread that paints reads them.
inline void set_up_text_size(int usual) { // 10..99
    setenv("FontSize", std::to_string(usual).c_str(), 1);
    s_text_size_digits = getenv("FontSize");
    s_usual_text_size = usual;
}

inline void set_text_size(int pixels) { // 10..99
    std::memcpy(s_text_size_digits, std::to_string(pixels).c_str(), 2);
}

// A show slot for a widget whose texts have a size of their own.
template <int size, ux_slot show>
int show_in_size(ux_obj *obj) {
    set_text_size(size);
    const int result = show(obj);
    set_text_size(s_usual_text_size);
    return result;
}

#endif
