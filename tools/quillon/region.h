// SPDX-License-Identifier: MIT
// Regions in the quillon tool: making one from rectangles, reading its rectangles back, what a
// transform makes of it, and the SVG picture of that.
#ifndef QUILLON_TOOL_REGION_H
#define QUILLON_TOOL_REGION_H

#include "common.h"

#include <quillon/Region>
#include <quillon/detail/RectangleImage.h>

#include <array>
#include <memory>

namespace tool {

using Rect = std::array<int, 4>; // left, top, right, bottom: the pixels [left, right) x [top, bottom)
using Quad = std::array<POINT, 4>;

struct RegionDeleter {
    void operator()(HRGN region) const { DeleteObject(region); }
};
using RegionHandle = std::unique_ptr<std::remove_pointer_t<HRGN>, RegionDeleter>;

// The union of the rectangles (an empty list gives the empty region).
RegionHandle makeRegion(const std::vector<Rect>& rects);
// The union of rectangles given one at a time, without keeping them: they are joined in batches,
// so that a long list costs neither a copy of itself nor one union of the whole region per line.
class RegionBuilder {
public:
    void add(const Rect& r);
    std::size_t count() const { return count_; }
    RegionHandle finish(); // the union of everything added
private:
    void flush();
    RegionHandle total_, batch_;
    std::size_t count_ = 0, inBatch_ = 0;
};
// The region's rectangles in the platform's banded order; none for a null handle.
std::vector<Rect> rectanglesOf(HRGN region);
// "L,T,R,B" as four integers.
inline Rect parseRect(std::string_view text)
{
    const auto f = split(text, ',');
    if (f.size() != 4) throw BadInput("expected four integers L,T,R,B, got " + std::to_string(f.size()));
    return {parseInt(f[0]), parseInt(f[1]), parseInt(f[2]), parseInt(f[3])};
}

// One region before and after a transform, and what its picture shows.
struct RegionPicture {
    std::string title;        // the element type and the transform
    std::vector<Rect> given;  // the user's own rectangles, drawn as outlines (none: too many to draw)
    std::vector<Rect> before; // the input region's rectangles
    std::vector<Quad> quads;  // each of them mapped: top left, top right, bottom right, bottom left
    std::vector<Rect> after;  // the rectangles of the mapped region
    std::vector<Rect> marked;  // pixels of the result to point out, such as where element types disagree
    std::vector<Rect> lacking; // pixels to point out that the result does not have
};

// Up to this many rectangles are drawn one by one; beyond it, the outline of their union.
constexpr std::size_t kMostRectanglesDrawn = 200;

template <class T>
RegionPicture mapRegion(const Transform<T>& t, HRGN input, std::string title)
{
    RegionPicture p;
    p.title = std::move(title);
    p.before = rectanglesOf(input);
    // The quadrilaterals the mapping joins, as the library makes them.
    for (const Rect& r : p.before) {
        POINT corners[4];
        quillon::rectangleImage(t, RECT{r[0], r[1], r[2], r[3]}, corners);
        p.quads.push_back({corners[0], corners[1], corners[2], corners[3]});
    }
    const RegionHandle output(t * input);
    p.after = rectanglesOf(output.get());
    return p;
}

template <class T>
RegionPicture mapRegion(const Transform<T>& t, const std::vector<Rect>& rects, std::string title)
{
    const RegionHandle input = makeRegion(rects);
    RegionPicture p = mapRegion(t, input.get(), std::move(title));
    if (rects.size() <= kMostRectanglesDrawn) p.given = rects;
    return p;
}

std::string jsonRects(const std::vector<Rect>& rects);
std::string jsonQuads(const std::vector<Quad>& quads);
// Pictures side by side, each in its own coordinates with axes (y downward, as on screen): the
// user's rectangles as dashed outlines (the outline of their union when there are many), the
// mapped region as one filled area, marked pixels circled, and a note for an empty result. A
// picture whose result lies far from its input gets two panels, before and after.
std::string svgDocument(const std::vector<RegionPicture>& pictures, const std::string& note = "");

} // namespace tool

#endif
