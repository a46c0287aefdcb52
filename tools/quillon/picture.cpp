// SPDX-License-Identifier: MIT
// The SVG pictures of the region and demo commands: each region in its own coordinates, with
// axes and tick labels (y downward, as on screen), the user's rectangles as dashed outlines, the
// mapped region as one filled area (one path, so no seams between its rectangles), marked pixels
// circled, and a note where the result is empty. Sizes are in screen pixels; the shapes are drawn
// in region coordinates inside a scaled group, with strokes that keep their width.
#include "region.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace tool {
namespace {

using Spans = std::vector<std::pair<int, int>>; // [left, right) on one band, left to right

// Where exactly one of two rows of spans covers a pixel, as horizontal segments {x1, y, x2, y}.
void addDifference(const Spans& a, const Spans& b, int y, std::vector<Rect>& segments)
{
    std::vector<int> xs;
    for (const auto* spans : {&a, &b})
        for (const auto& [l, r] : *spans) xs.insert(xs.end(), {l, r});
    std::sort(xs.begin(), xs.end());
    const auto covers = [](const Spans& s, int x) {
        return std::any_of(s.begin(), s.end(), [x](const auto& span) { return span.first <= x && x < span.second; });
    };
    for (std::size_t k = 0; k + 1 < xs.size(); ++k) {
        if (xs[k] == xs[k + 1] || covers(a, xs[k]) == covers(b, xs[k])) continue;
        if (!segments.empty() && segments.back()[1] == y && segments.back()[3] == y && segments.back()[2] == xs[k])
            segments.back()[2] = xs[k + 1];
        else
            segments.push_back({xs[k], y, xs[k + 1], y});
    }
}

// The outline of a region given by its banded rectangles, as segments {x1, y1, x2, y2}.
std::vector<Rect> outlineOf(const std::vector<Rect>& banded)
{
    struct Band {
        int top, bottom;
        Spans spans;
    };
    std::vector<Band> bands;
    for (const Rect& r : banded) {
        if (bands.empty() || bands.back().top != r[1] || bands.back().bottom != r[3]) bands.push_back({r[1], r[3], {}});
        Spans& spans = bands.back().spans;
        if (!spans.empty() && spans.back().second == r[0])
            spans.back().second = r[2];
        else
            spans.emplace_back(r[0], r[2]);
    }
    std::vector<Rect> segments;
    const Spans none;
    for (std::size_t k = 0; k <= bands.size(); ++k) { // the edge above band k
        const Band* above = k > 0 ? &bands[k - 1] : nullptr;
        const Band* below = k < bands.size() ? &bands[k] : nullptr;
        if (above && below && above->bottom == below->top) {
            addDifference(above->spans, below->spans, below->top, segments);
        } else {
            if (above) addDifference(above->spans, none, above->bottom, segments);
            if (below) addDifference(none, below->spans, below->top, segments);
        }
    }
    for (const Band& b : bands)
        for (const auto& [l, r] : b.spans) segments.insert(segments.end(), {Rect{l, b.top, l, b.bottom}, Rect{r, b.top, r, b.bottom}});
    return segments;
}

std::string xmlText(std::string_view s)
{
    std::string out;
    for (const char c : s) out += c == '<' ? "&lt;" : c == '>' ? "&gt;" : c == '&' ? "&amp;" : c == '"' ? "&quot;" : std::string(1, c);
    return out;
}

// A number of the picture in plain decimal notation, as short as reads back exactly.
std::string exact(double v)
{
    char buffer[400];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, v == 0 ? 0.0 : v, std::chars_format::fixed);
    return std::string(buffer, result.ptr);
}

// A coordinate of the picture, to a hundredth (a millionth for the tiny ones of large scales).
std::string num(double v) { return exact(std::fabs(v) < 1 ? std::round(v * 1e6) / 1e6 : std::round(v * 100) / 100); }

struct Box {
    double x0 = std::numeric_limits<double>::infinity(), y0 = x0, x1 = -x0, y1 = -x0;
    void add(double x, double y) { x0 = std::min(x0, x), y0 = std::min(y0, y), x1 = std::max(x1, x), y1 = std::max(y1, y); }
    void add(const Box& b) { if (!b.empty()) add(b.x0, b.y0), add(b.x1, b.y1); }
    void add(const std::vector<Rect>& rects) { for (const Rect& r : rects) add(r[0], r[1]), add(r[2], r[3]); }
    bool empty() const { return x0 > x1; }
    double width() const { return x1 - x0; }
    double height() const { return y1 - y0; }
};

// Space around the plot, in screen pixels: tick labels on the left and below, the title above.
constexpr double kLeft = 72, kRight = 24, kTop = 56, kBottom = 44, kGap = 16, kFont = 14;

// One panel: a picture, or its before or after half, in one frame of region coordinates.
struct Panel {
    const RegionPicture* picture;
    std::string title, subtitle;
    bool before, after; // which parts it draws
    Box box;            // the region coordinates it shows
    double scale = 1;   // screen pixels per region unit
    double width() const { return kLeft + box.width() * scale + kRight; }
    double height() const { return kTop + box.height() * scale + kBottom; }
};

// Fits a box of content into a plot of at most 560 x 420 pixels and at least 220 x 160, with a
// margin, no more than 24 pixels to a unit.
void fit(Panel& panel, Box content)
{
    if (content.empty()) content = Box{0, 0, 1, 1};
    const double margin = std::max(1.0, 0.08 * std::max(content.width(), content.height()));
    Box b{content.x0 - margin, content.y0 - margin, content.x1 + margin, content.y1 + margin};
    const double s = std::min({560 / b.width(), 420 / b.height(), 24.0});
    const auto widen = [](double& lo, double& hi, double least) {
        if (hi - lo < least) {
            const double grow = (least - (hi - lo)) / 2;
            lo -= grow, hi += grow;
        }
    };
    widen(b.x0, b.x1, 220 / s);
    widen(b.y0, b.y1, 160 / s);
    panel.box = b;
    panel.scale = s;
}

// A round step for about six ticks over an extent: 1, 2 or 5 times a power of ten, at least 1.
double tickStep(double extent)
{
    const double rough = extent / 6;
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    for (const double m : {1.0, 2.0, 5.0, 10.0})
        if (m * power >= rough) return std::max(1.0, m * power);
    return std::max(1.0, 10 * power);
}

// Rectangles as filled paths of at most 1000 each (very long attributes are more than some SVG
// readers take), drawn with crisp edges so that the pieces meet without seams.
std::string filledRects(const std::vector<Rect>& rects, const std::string& attributes)
{
    std::string svg = "<g " + attributes + " shape-rendering=\"crispEdges\">\n";
    for (std::size_t first = 0; first < rects.size(); first += 1000) {
        svg += "<path d=\"";
        for (std::size_t k = first; k < std::min(rects.size(), first + 1000); ++k) {
            const Rect& r = rects[k];
            svg += "M" + num(r[0]) + " " + num(r[1]) + "H" + num(r[2]) + "V" + num(r[3]) + "H" + num(r[0]) + "Z";
        }
        svg += "\"/>\n";
    }
    return svg + "</g>\n";
}

std::string segmentPath(const std::vector<Rect>& segments)
{
    std::string d;
    for (const Rect& s : segments) d += "M" + num(s[0]) + " " + num(s[1]) + "L" + num(s[2]) + " " + num(s[3]);
    return d;
}

std::string drawPanel(const Panel& panel, double left, int index)
{
    const RegionPicture& p = *panel.picture;
    const double s = panel.scale, px = left + kLeft, py = kTop, pw = panel.box.width() * s, ph = panel.box.height() * s;
    const auto X = [&](double x) { return px + (x - panel.box.x0) * s; };
    const auto Y = [&](double y) { return py + (y - panel.box.y0) * s; };
    const std::string id = "plot" + std::to_string(index);
    std::string svg = "<g class=\"panel\">\n";
    svg += "<text class=\"title\" x=\"" + num(px) + "\" y=\"22\" font-weight=\"bold\">" + xmlText(panel.title) + "</text>\n";
    if (!panel.subtitle.empty())
        svg += "<text class=\"subtitle\" x=\"" + num(px) + "\" y=\"42\" fill=\"#555\">" + xmlText(panel.subtitle) + "</text>\n";

    // Axes: a grid line and a label at every tick, the lines x = 0 and y = 0 darker.
    svg += "<g class=\"axes\" font-size=\"12\" fill=\"#333\">\n";
    svg += "<rect x=\"" + num(px) + "\" y=\"" + num(py) + "\" width=\"" + num(pw) + "\" height=\"" + num(ph) +
           "\" fill=\"none\" stroke=\"#999\"/>\n";
    const double step = tickStep(std::max(panel.box.width(), panel.box.height()));
    for (double x = std::ceil(panel.box.x0 / step) * step; x <= panel.box.x1; x += step)
        svg += "<line x1=\"" + num(X(x)) + "\" y1=\"" + num(py) + "\" x2=\"" + num(X(x)) + "\" y2=\"" + num(py + ph) +
               "\" stroke=\"" + (x == 0 ? "#aaa" : "#eee") + "\"/><text class=\"x-label\" x=\"" + num(X(x)) + "\" y=\"" +
               num(py + ph + 18) + "\" text-anchor=\"middle\">" + num(x) + "</text>\n";
    for (double y = std::ceil(panel.box.y0 / step) * step; y <= panel.box.y1; y += step)
        svg += "<line x1=\"" + num(px) + "\" y1=\"" + num(Y(y)) + "\" x2=\"" + num(px + pw) + "\" y2=\"" + num(Y(y)) +
               "\" stroke=\"" + (y == 0 ? "#aaa" : "#eee") + "\"/><text class=\"y-label\" x=\"" + num(px - 6) + "\" y=\"" +
               num(Y(y) + 4) + "\" text-anchor=\"end\">" + num(y) + "</text>\n";
    svg += "<text x=\"" + num(px + pw + 6) + "\" y=\"" + num(py + ph + 18) + "\">x</text><text x=\"" + num(px - 6) +
           "\" y=\"" + num(py - 6) + "\" text-anchor=\"end\">y \u2193</text>\n</g>\n";

    // The shapes, in region coordinates, cut to the plot.
    svg += "<clipPath id=\"" + id + "\"><rect x=\"" + num(px) + "\" y=\"" + num(py) + "\" width=\"" + num(pw) +
           "\" height=\"" + num(ph) + "\"/></clipPath>\n<g clip-path=\"url(#" + id + ")\">\n";
    // The box's corner goes to the plot's corner; every number exact, since far from the origin a
    // rounded scale would move the shapes off their axes.
    svg += "<g class=\"shapes\" transform=\"translate(" + exact(px) + " " + exact(py) + ") scale(" + exact(s) + ") translate(" +
           exact(-panel.box.x0) + " " + exact(-panel.box.y0) + ")\">\n";
    // Many given rectangles would hide everything as outlines: then their union is a grey area.
    if (panel.before && p.given.empty()) svg += filledRects(p.before, "class=\"given-region\" fill=\"#cccccc\"");
    if (panel.after) {
        svg += filledRects(p.after, "class=\"mapped-region\" fill=\"#6baed6\"");
        if (p.after.size() <= 2000)
            svg += "<path class=\"mapped-outline\" fill=\"none\" stroke=\"#08519c\" stroke-width=\"" + num(1.2 / s) +
                   "\" stroke-linecap=\"square\" d=\"" + segmentPath(outlineOf(p.after)) + "\"/>\n";
    }
    if (panel.before && !p.given.empty()) {
        // Stroke widths and dashes in region units, so that they are the same on screen at any scale.
        svg += "<g class=\"given-rectangles\" fill=\"none\" stroke=\"#222\" stroke-width=\"" + num(1.5 / s) +
               "\" stroke-dasharray=\"" + num(6 / s) + " " + num(4 / s) + "\">\n";
        for (const Rect& r : p.given)
            svg += "<rect x=\"" + num(std::min(r[0], r[2])) + "\" y=\"" + num(std::min(r[1], r[3])) + "\" width=\"" +
                   num(std::abs(double(r[2]) - r[0])) + "\" height=\"" + num(std::abs(double(r[3]) - r[1])) + "\"/>\n";
        svg += "</g>\n";
    }
    // Marked pixels in orange: filled where the result has them, outlined where it lacks them, and
    // circled when there are few enough to be found by eye.
    const bool circled = p.marked.size() + p.lacking.size() <= 12;
    for (const auto* marks : {&p.marked, &p.lacking}) {
        if (!panel.after || marks->empty()) continue;
        const bool has = marks == &p.marked;
        svg += std::string("<g class=\"") + (has ? "marked-pixels" : "lacking-pixels") + "\" stroke=\"#e6550d\" stroke-width=\"" +
               num(1.5 / s) + "\" fill=\"" + (has ? "#e6550d" : "none") + "\">\n";
        for (const Rect& r : *marks) {
            const double w = double(r[2]) - r[0], h = double(r[3]) - r[1];
            svg += "<rect x=\"" + num(r[0]) + "\" y=\"" + num(r[1]) + "\" width=\"" + num(w) + "\" height=\"" + num(h) + "\"/>";
            if (circled)
                svg += "<circle cx=\"" + num(r[0] + w / 2) + "\" cy=\"" + num(r[1] + h / 2) + "\" r=\"" +
                       num(std::max(10 / s, std::hypot(w, h) / 2 + 4 / s)) + "\" fill=\"none\"/>";
            svg += "\n";
        }
        svg += "</g>\n";
    }
    svg += "</g>\n</g>\n";
    if (panel.after && p.after.empty())
        svg += "<text class=\"empty-note\" x=\"" + num(px + pw / 2) + "\" y=\"" + num(py + ph / 2 - 4) +
               "\" text-anchor=\"middle\" fill=\"#b30000\" font-weight=\"bold\">empty:<tspan x=\"" + num(px + pw / 2) +
               "\" dy=\"18\">the mapped region has no pixel</tspan></text>\n";
    return svg + "</g>\n";
}

} // namespace

std::string svgDocument(const std::vector<RegionPicture>& pictures, const std::string& note)
{
    std::vector<Panel> panels;
    bool marked = false;
    for (const RegionPicture& p : pictures) {
        Box before, after;
        before.add(p.before), before.add(p.given), after.add(p.after);
        marked = marked || !p.marked.empty() || !p.lacking.empty();
        Box both = before;
        both.add(after);
        const double own = std::max({before.empty() ? 0 : std::max(before.width(), before.height()),
                                     after.empty() ? 0 : std::max(after.width(), after.height()), 1.0});
        // Far apart, the two would be specks in one frame: each gets its own.
        if (!before.empty() && !after.empty() && std::max(both.width(), both.height()) > 4 * own + 16) {
            Panel b{&p, p.title, "before: the rectangles given", true, false, {}, 1};
            Panel a{&p, p.title, "after: the mapped region, far from them", false, true, {}, 1};
            fit(b, before), fit(a, after);
            panels.push_back(b), panels.push_back(a);
        } else {
            Panel one{&p, p.title, "", true, true, {}, 1};
            fit(one, both);
            panels.push_back(one);
        }
    }
    double width = 0, height = 0;
    for (const Panel& panel : panels) width += (width > 0 ? kGap : 0) + panel.width(), height = std::max(height, panel.height());
    bool many = false;
    for (const Panel& panel : panels) many = many || (panel.before && panel.picture->given.empty());
    std::vector<std::string> legend = {std::string(many ? "grey: the region given" : "dashed: the rectangles given") +
                                       "; blue: the mapped region (each rectangle's corners mapped and truncated)" +
                                       (marked && note.empty() ? "; orange: marked pixels" : "")};
    if (!note.empty()) legend.push_back(note);
    const double legendTop = height + 8;
    height = legendTop + 20.0 * legend.size() + 8;
    for (const auto& line : legend) width = std::max(width, kLeft + 8.0 * static_cast<double>(line.size()) + kRight);

    std::string svg = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
                      num(std::ceil(width)) + "\" height=\"" + num(std::ceil(height)) + "\" viewBox=\"0 0 " + num(std::ceil(width)) +
                      " " + num(std::ceil(height)) + "\" font-family=\"sans-serif\" font-size=\"" + num(kFont) + "\">\n" +
                      "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
    double left = 0;
    for (std::size_t k = 0; k < panels.size(); ++k) {
        svg += drawPanel(panels[k], left, static_cast<int>(k));
        left += panels[k].width() + kGap;
    }
    for (std::size_t k = 0; k < legend.size(); ++k)
        svg += "<text class=\"legend\" x=\"" + num(kLeft) + "\" y=\"" + num(legendTop + 16 + 20.0 * k) + "\">" +
               xmlText(legend[k]) + "</text>\n";
    return svg + "</svg>\n";
}

} // namespace tool
