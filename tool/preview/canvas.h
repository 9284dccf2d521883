// A picture in memory with what is needed to draw on it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zerklsc::tool {

struct Rgb {
    uint8_t r, g, b;
};

struct Rectangle {
    int x, y, width, height;
};

class Canvas {
  public:
    Canvas(int width, int height, Rgb background);

    int width() const { return width_; }
    int height() const { return height_; }
    const std::vector<Rgb>& pixels() const { return pixels_; }

    // Drawing outside the picture does nothing.
    void set(int x, int y, Rgb colour) {
        if (x >= 0 && x < width_ && y >= 0 && y < height_)
            pixels_[static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x)] = colour;
    }
    void fill(Rectangle area, Rgb colour);
    // A line of one pixel around the area, outside of it.
    void frame(Rectangle area, Rgb colour);
    // One line of text whose top left corner is (x, y); characters without a glyph are drawn as '?'.
    void text(int x, int y, const std::string& line, Rgb colour);

  private:
    int width_, height_;
    std::vector<Rgb> pixels_;
};

// What Canvas::text() takes, in pixels.
constexpr int text_height = 14;
int text_width(const std::string& line);

} // namespace zerklsc::tool
