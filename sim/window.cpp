// SPDX-License-Identifier: MIT
// The SDL side of a run: events to messages, shared memory to textures. SDL stays in this file.
#include "sim/window.h"

#include "sim/failure.h"
#include "sim/input_queue.h"
#include "sim/key_map.h"
#include "sim/keys.h"
#include "sim/remote_layout.h"
#include "sim/remote_paint.h"
#include "sim/screen.h"

#include <SDL.h>

#include <cmath>
#include <optional>

namespace ux::sim {

namespace {

using poster = std::function<void(const input_message &)>;

// A click shorter than this is still seen as a press.
constexpr std::chrono::milliseconds k_shortest_press{140};
constexpr int k_no_key = -1;

struct sdl_delete {
    void operator()(SDL_Window *window) const { SDL_DestroyWindow(window); }
    void operator()(SDL_Renderer *renderer) const { SDL_DestroyRenderer(renderer); }
    void operator()(SDL_Texture *texture) const { SDL_DestroyTexture(texture); }
};

template <class T>
using sdl_owner = std::unique_ptr<T, sdl_delete>;

template <class T>
sdl_owner<T> checked(T *made, const char *what) {
    if (made == nullptr) {
        throw failure(std::string("cannot open ") + what + ": " + SDL_GetError() +
                      " (--headless runs without a window)");
    }
    return sdl_owner<T>(made);
}

class sdl_video {
  public:
    sdl_video() {
        SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1"); // the first click counts
        SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
        if (SDL_Init(SDL_INIT_VIDEO) != 0) {
            throw failure(std::string("cannot open a window: ") + SDL_GetError() +
                          " (--headless runs without one)");
        }
        SDL_EnableScreenSaver();
    }
    sdl_video(const sdl_video &) = delete;
    sdl_video &operator=(const sdl_video &) = delete;
    ~sdl_video() { SDL_Quit(); }
};

window_size window_for(const screen_shape &shape) {
    SDL_Rect usable = {0, 0, 1280, 720};
    SDL_GetDisplayUsableBounds(0, &usable);
    return preferred_window(shape.width, shape.height, usable.w, usable.h);
}

std::optional<int> key_of(SDL_Keycode code) {
    if (code >= SDLK_0 && code <= SDLK_9) {
        return k_key_digit0 + static_cast<int>(code - SDLK_0);
    }
    if (code >= SDLK_KP_1 && code <= SDLK_KP_9) {
        return k_key_digit0 + 1 + static_cast<int>(code - SDLK_KP_1);
    }
    switch (code) {
    case SDLK_UP:
        return k_key_up;
    case SDLK_DOWN:
        return k_key_down;
    case SDLK_LEFT:
        return k_key_left;
    case SDLK_RIGHT:
        return k_key_right;
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
        return k_key_ok;
    case SDLK_KP_0:
        return k_key_digit0;
    case SDLK_BACKSPACE:
    case SDLK_DELETE:
        return k_key_delete;
    case SDLK_LSHIFT:
    case SDLK_RSHIFT:
        return k_key_shift;
    case SDLK_PERIOD:
    case SDLK_KP_PERIOD:
        return k_key_punctuation;
    default:
        return std::nullopt;
    }
}

SDL_FRect frect_of(const rect &area) {
    return {static_cast<float>(area.x), static_cast<float>(area.y), static_cast<float>(area.width),
            static_cast<float>(area.height)};
}

bool whole(double value) {
    return std::abs(value - std::round(value)) < 1e-3;
}

class window : public viewer {
  public:
    window(const shared_screen &screen, const std::string &name)
        : m_screen(screen), m_shape(screen.shape()), m_size(window_for(m_shape)) {
        std::string title = "ux-sim: " + name + " (" + std::to_string(m_shape.width) + "x" +
                            std::to_string(m_shape.height) + ")";
        m_window = checked(SDL_CreateWindow(title.c_str(), SDL_WINDOWPOS_CENTERED,
                                            SDL_WINDOWPOS_CENTERED, m_size.width, m_size.height,
                                            SDL_WINDOW_RESIZABLE | SDL_WINDOW_HIDDEN),
                           "a window");
        SDL_SetWindowMinimumSize(m_window.get(), 240, 240);
        m_renderer = checked(SDL_CreateRenderer(m_window.get(), -1, 0), "a renderer");
        make_textures();
        // Not earlier: a renderer may replace the window by another one.
        SDL_ShowWindow(m_window.get());
    }

    bool handle_input(const poster &post) override {
        SDL_Event event;
        while (SDL_PollEvent(&event) != 0) {
            if (event.type == SDL_QUIT) {
                return false;
            }
            handle(event, post);
        }
        return true;
    }

    void show(const row_range &changed) override {
        if (m_release_at && steady::now() >= *m_release_at) {
            press(k_no_key);
        }
        if (changed.count > 0) {
            upload(changed);
        }
        if (m_stale) {
            redraw();
        }
    }

  private:
    void handle(const SDL_Event &event, const poster &post) {
        switch (event.type) {
        case SDL_WINDOWEVENT:
            handle_window(event.window);
            return;
        case SDL_RENDER_TARGETS_RESET:
        case SDL_RENDER_DEVICE_RESET:
            make_textures();
            return;
        case SDL_MOUSEBUTTONDOWN:
            if (event.button.button == SDL_BUTTON_LEFT) {
                click({static_cast<double>(event.button.x), static_cast<double>(event.button.y)},
                      post);
            }
            return;
        case SDL_MOUSEBUTTONUP:
            release();
            return;
        case SDL_KEYDOWN:
            if (event.key.keysym.sym == SDLK_F1 && event.key.repeat == 0) {
                m_map_shown = !m_map_shown;
                m_stale = true;
            } else if (auto key = key_of(event.key.keysym.sym)) {
                press(*key);
                post(key_message(*key));
            }
            return;
        case SDL_KEYUP:
            if (key_of(event.key.keysym.sym) == m_pressed) {
                release();
            }
            return;
        default:
            return;
        }
    }

    void handle_window(const SDL_WindowEvent &event) {
        if (event.event == SDL_WINDOWEVENT_SIZE_CHANGED) {
            m_size = {event.data1, event.data2};
            make_textures();
        } else if (event.event == SDL_WINDOWEVENT_EXPOSED) {
            m_stale = true;
        }
    }

    void click(point at, const poster &post) {
        if (auto pixel = screen_pixel_at(m_layout, at, m_shape.width, m_shape.height)) {
            post(touch_message(pixel->x, pixel->y));
        } else if (const remote_button *button = button_at(m_layout.in_remote(at))) {
            press(button->key);
            post(key_message(button->key));
        }
    }

    void press(int key) {
        m_release_at.reset();
        m_pressed_at = steady::now();
        if (m_pressed != key) {
            m_pressed = key;
            upload_remote();
        }
    }

    void release() {
        if (m_pressed != k_no_key) {
            m_release_at = m_pressed_at + k_shortest_press;
        }
    }

    // Everything that depends on the window's size or on the renderer's memory.
    void make_textures() {
        m_layout = layout_for(m_size, m_shape.width, m_shape.height);
        const bool narrow = m_shape.format == pixel_format::rgb565;
        const Uint32 format = narrow ? SDL_PIXELFORMAT_RGB565 : SDL_PIXELFORMAT_ARGB8888;
        m_picture = make_texture(format, m_shape.width, m_shape.height);
        const bool sharp = whole(m_layout.screen.width / m_shape.width);
        SDL_SetTextureScaleMode(m_picture.get(),
                                sharp ? SDL_ScaleModeNearest : SDL_ScaleModeLinear);
        m_remote = make_texture(SDL_PIXELFORMAT_ARGB8888, remote_width(), remote_height());
        make_key_map();
        upload({0, m_shape.height});
        upload_remote();
    }

    void make_key_map() {
        m_map_place = place_key_map(m_size, m_layout.remote_scale);
        canvas panel(m_map_place.width, m_map_place.height, m_map_place.scale, k_backdrop);
        paint_key_map(panel);
        m_map = make_texture(SDL_PIXELFORMAT_ARGB8888, panel.width(), panel.height());
        SDL_UpdateTexture(m_map.get(), nullptr, panel.pixels().data(),
                          panel.width() * static_cast<int>(sizeof(uint32_t)));
    }

    sdl_owner<SDL_Texture> make_texture(Uint32 format, int width, int height) {
        auto texture = checked(
            SDL_CreateTexture(m_renderer.get(), format, SDL_TEXTUREACCESS_STREAMING, width, height),
            "a texture");
        SDL_SetTextureBlendMode(texture.get(),
                                SDL_BLENDMODE_NONE); // the screen's alpha is no matter
        return texture;
    }

    int remote_width() const { return std::max(static_cast<int>(m_layout.remote.width), 1); }
    int remote_height() const { return std::max(static_cast<int>(m_layout.remote.height), 1); }

    void upload(const row_range &rows) {
        const SDL_Rect area = {0, rows.first, m_shape.width, rows.count};
        SDL_UpdateTexture(m_picture.get(), &area,
                          m_screen.pixels().data() + rows.first * m_shape.row_bytes(),
                          static_cast<int>(m_shape.row_bytes()));
        m_stale = true;
    }

    void upload_remote() {
        canvas remote(remote_width(), remote_height(), m_layout.remote_scale, k_backdrop);
        paint_remote(remote, m_pressed);
        SDL_UpdateTexture(m_remote.get(), nullptr, remote.pixels().data(),
                          remote.width() * static_cast<int>(sizeof(uint32_t)));
        m_stale = true;
    }

    void set_colour(colour ink) {
        SDL_SetRenderDrawColor(m_renderer.get(), ink.red, ink.green, ink.blue, SDL_ALPHA_OPAQUE);
    }

    void redraw() {
        constexpr float k_frame = 2;
        SDL_FRect screen = frect_of(m_layout.screen);
        SDL_FRect frame = {screen.x - k_frame, screen.y - k_frame, screen.w + 2 * k_frame,
                           screen.h + 2 * k_frame};
        SDL_FRect remote = frect_of(m_layout.remote);
        // Whole pixels: the texture is painted for exactly this size.
        remote = {std::floor(remote.x), std::floor(remote.y), static_cast<float>(remote_width()),
                  static_cast<float>(remote_height())};
        set_colour(k_backdrop);
        SDL_RenderClear(m_renderer.get());
        set_colour(k_screen_frame);
        SDL_RenderFillRectF(m_renderer.get(), &frame);
        SDL_RenderCopyF(m_renderer.get(), m_picture.get(), nullptr, &screen);
        SDL_RenderCopyF(m_renderer.get(), m_remote.get(), nullptr, &remote);
        if (m_map_shown) {
            const SDL_Rect place = {m_map_place.x, m_map_place.y, m_map_place.width,
                                    m_map_place.height};
            SDL_RenderCopy(m_renderer.get(), m_map.get(), nullptr, &place);
        }
        SDL_RenderPresent(m_renderer.get());
        m_stale = false;
    }

    const shared_screen &m_screen;
    const screen_shape m_shape;
    sdl_video m_video;
    window_size m_size;
    window_layout m_layout;
    sdl_owner<SDL_Window> m_window;
    sdl_owner<SDL_Renderer> m_renderer;
    sdl_owner<SDL_Texture> m_picture;
    sdl_owner<SDL_Texture> m_remote;
    sdl_owner<SDL_Texture> m_map; // of the keyboard
    key_map_place m_map_place;
    bool m_map_shown = false;
    int m_pressed = k_no_key;
    steady::time_point m_pressed_at;
    std::optional<steady::time_point> m_release_at;
    bool m_stale = true; // the window shows something older than what we hold
};

} // namespace

std::unique_ptr<viewer> open_window(const shared_screen &screen, const std::string &name) {
    return std::make_unique<window>(screen, name);
}

} // namespace ux::sim
