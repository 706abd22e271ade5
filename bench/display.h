#pragma once

// The X display as somebody who looks at it sees it: pixels.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace bench {

struct FreeMemory
{
    void operator()(void* memory) const { std::free(memory); }
};

// What the probe paints. Magenta and green in any palette: far from what else stands on a screen.
enum class Paint : std::uint8_t
{
    Other,
    Magenta,
    Green
};

struct Area
{
    int left = 0, top = 0, right = -1, bottom = -1;
    int rows = 0; // of those looked at, how many show a good part of the block
};

class Display
{
public:
    Display() : connection_(xcb_connect(nullptr, nullptr))
    {
        if (xcb_connection_has_error(connection_) != 0) {
            std::fputs("no display\n", stderr);
            std::exit(1);
        }
        screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    }
    ~Display() { xcb_disconnect(connection_); }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    xcb_connection_t* Connection() const { return connection_; }
    xcb_window_t Root() const { return screen_->root; }

    Paint At(int x, int y) const
    {
        const auto image = Image(x, y, 1);
        return image ? PaintOf(xcb_get_image_data(image.get())) : Paint::Other;
    }

    // Where the magenta block stands. Some lines across the whole screen are enough to find it.
    Area FindBlock() const
    {
        constexpr int lines = 24;
        constexpr int leastPixels = 300;
        Area area;
        for (int i = 1; i <= lines; ++i) {
            const int y = screen_->height_in_pixels * i / (lines + 1);
            const auto image = Image(0, y, screen_->width_in_pixels);
            int found = 0;
            for (int x = 0; image && x < xcb_get_image_data_length(image.get()) / 4; ++x) {
                if (PaintOf(xcb_get_image_data(image.get()) + 4 * static_cast<std::ptrdiff_t>(x)) != Paint::Magenta)
                    continue;
                area.left = found == 0 ? x : area.left;
                area.right = x;
                ++found;
            }
            if (found > leastPixels) {
                area.top = area.rows == 0 ? y : area.top;
                area.bottom = y;
                ++area.rows;
            }
        }
        return area;
    }
    bool ShowsBlock() const { return FindBlock().rows >= 4; }

private:
    using Reply = std::unique_ptr<xcb_get_image_reply_t, FreeMemory>;
    Reply Image(int x, int y, int width) const
    {
        const auto asked =
            xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, screen_->root, static_cast<std::int16_t>(x),
                          static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width), 1, ~0U);
        return Reply(xcb_get_image_reply(connection_, asked, nullptr));
    }
    static Paint PaintOf(const std::uint8_t* pixel)
    {
        const int blue = pixel[0];
        const int green = pixel[1];
        const int red = pixel[2];
        if (red > green + 20 && blue > green + 20)
            return Paint::Magenta;
        return green > red + 40 && green > blue + 40 ? Paint::Green : Paint::Other;
    }

    xcb_connection_t* connection_;
    const xcb_screen_t* screen_ = nullptr;
};

} // namespace bench
