// quillon region: a region of rectangles through a transform, and the SVG picture of it.
#include "region.h"
#include "steps.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>

namespace tool {

namespace {
void unite(RegionHandle& into, HRGN piece)
{
    if (!piece || CombineRgn(into.get(), into.get(), piece, RGN_OR) == ERROR) throw Failure("cannot make a region");
}
RegionHandle emptyRegion()
{
    RegionHandle region(CreateRectRgn(0, 0, 0, 0));
    if (!region) throw Failure("cannot make a region");
    return region;
}
} // namespace

RegionHandle makeRegion(const std::vector<Rect>& rects)
{
    RegionBuilder builder;
    for (const Rect& r : rects) builder.add(r);
    return builder.finish();
}

void RegionBuilder::add(const Rect& r)
{
    if (!batch_) batch_ = emptyRegion();
    const RegionHandle piece(CreateRectRgn(r[0], r[1], r[2], r[3]));
    unite(batch_, piece.get());
    ++count_;
    if (++inBatch_ == 1024) flush();
}

void RegionBuilder::flush()
{
    if (!batch_) return;
    if (!total_) total_ = std::move(batch_);
    else unite(total_, batch_.get());
    batch_.reset();
    inBatch_ = 0;
}

RegionHandle RegionBuilder::finish()
{
    flush();
    return total_ ? std::move(total_) : emptyRegion();
}

std::vector<Rect> rectanglesOf(HRGN region)
{
    if (!region) return {};
    const DWORD size = GetRegionData(region, 0, nullptr);
    std::vector<DWORD> buffer(size / sizeof(DWORD) + 1); // DWORD-aligned, as RGNDATA needs
    auto* data = reinterpret_cast<RGNDATA*>(buffer.data());
    if (size < sizeof(RGNDATAHEADER) || GetRegionData(region, size, data) == 0) throw Failure("cannot read a region");
    const auto* rects = reinterpret_cast<const RECT*>(reinterpret_cast<const char*>(data) + data->rdh.dwSize);
    std::vector<Rect> out;
    for (DWORD k = 0; k < data->rdh.nCount; ++k) out.push_back({rects[k].left, rects[k].top, rects[k].right, rects[k].bottom});
    return out;
}

Rect parseRect(std::string_view text)
{
    const auto f = split(text, ',');
    if (f.size() != 4) throw BadInput("expected four integers L,T,R,B, got " + std::to_string(f.size()));
    return {parseInt(f[0]), parseInt(f[1]), parseInt(f[2]), parseInt(f[3])};
}

std::string jsonRects(const std::vector<Rect>& rects)
{
    return jsonArray(rects, [](const Rect& r) { return jsonArray(r, [](int v) { return std::to_string(v); }); });
}

std::string jsonQuads(const std::vector<Quad>& quads)
{
    return jsonArray(quads, [](const Quad& q) {
        return jsonArray(q, [](const POINT& p) { return "[" + std::to_string(p.x) + ", " + std::to_string(p.y) + "]"; });
    });
}

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

// Coordinates of the picture, to a hundredth.
std::string num(double v) { return format(std::round(v * 100) / 100, false); }

} // namespace

std::string svgDocument(const std::vector<RegionPicture>& pictures)
{
    // Each picture's box holds everything it draws, with a margin; all share one scale.
    struct Box {
        double x0 = 1e300, y0 = 1e300, x1 = -1e300, y1 = -1e300;
        void add(double x, double y) { x0 = std::min(x0, x), y0 = std::min(y0, y), x1 = std::max(x1, x), y1 = std::max(y1, y); }
    };
    std::vector<Box> boxes;
    double size = 1;
    for (const auto& p : pictures) {
        Box b;
        for (const auto* rects : {&p.before, &p.after})
            for (const Rect& r : *rects) b.add(r[0], r[1]), b.add(r[2], r[3]);
        for (const Quad& q : p.quads)
            for (const POINT& pt : q) b.add(pt.x, pt.y);
        if (b.x0 > b.x1) b = Box{0, 0, 1, 1};
        const double margin = std::max(2.0, 0.08 * std::max(b.x1 - b.x0, b.y1 - b.y0));
        b = Box{b.x0 - margin, b.y0 - margin, b.x1 + margin, b.y1 + margin};
        size = std::max({size, b.x1 - b.x0, b.y1 - b.y0});
        boxes.push_back(b);
    }
    const double stroke = size * 0.006, gap = size * 0.06;
    double width = 0, height = 0;
    for (const Box& b : boxes) width += (width > 0 ? gap : 0) + (b.x1 - b.x0), height = std::max(height, b.y1 - b.y0);
    const double font = std::min(size * 0.05, width / 50), top = font * 2;
    height += top + font * 2;

    const double pixels = 320.0 * pictures.size(); // the picture's width on screen
    std::string svg = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
                      num(pixels) + "\" height=\"" + num(std::round(pixels * height / width)) + "\" viewBox=\"0 0 " +
                      num(width) + " " + num(height) + "\" font-family=\"sans-serif\" font-size=\"" + num(font) + "\">\n" +
                      "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
    double left = 0;
    for (std::size_t k = 0; k < pictures.size(); ++k) {
        const RegionPicture& p = pictures[k];
        const Box& b = boxes[k];
        svg += "<text x=\"" + num(left) + "\" y=\"" + num(font * 1.3) + "\">" + xmlText(p.caption) + "</text>\n";
        svg += "<g transform=\"translate(" + num(left - b.x0) + " " + num(top - b.y0) + ")\">\n";
        svg += "<g class=\"mapped-region\" fill=\"#6baed6\" fill-opacity=\"0.7\">\n";
        for (const Rect& r : p.after)
            svg += "<rect x=\"" + num(r[0]) + "\" y=\"" + num(r[1]) + "\" width=\"" + num(double(r[2]) - r[0]) + "\" height=\"" +
                   num(double(r[3]) - r[1]) + "\"/>\n";
        svg += "</g>\n<g class=\"mapped-quadrilaterals\" fill=\"none\" stroke=\"#d62728\" stroke-width=\"" + num(stroke) +
               "\" stroke-linejoin=\"round\">\n";
        for (const Quad& q : p.quads) {
            svg += "<polygon points=\"";
            for (const POINT& pt : q) svg += num(pt.x) + "," + num(pt.y) + (&pt == &q[3] ? "" : " ");
            svg += "\"/>\n";
        }
        svg += "</g>\n<path class=\"region-outline\" fill=\"none\" stroke=\"#222\" stroke-width=\"" + num(stroke) +
               "\" stroke-dasharray=\"" + num(stroke * 4) + " " + num(stroke * 3) + "\" d=\"";
        for (const Rect& s : outlineOf(p.before))
            svg += "M" + num(s[0]) + " " + num(s[1]) + "L" + num(s[2]) + " " + num(s[3]);
        svg += "\"/>\n</g>\n";
        left += (b.x1 - b.x0) + gap;
    }
    svg += "<text x=\"0\" y=\"" + num(height - font * 0.6) +
           "\">dashed: the region; red: each rectangle's four mapped corners; blue: the mapped region</text>\n</svg>\n";
    return svg;
}

namespace {

struct RegionOptions {
    std::string type = "double", file, svg, output;
    std::vector<std::string> rects;
    bool exact = false, asJson = false;
};

// The rectangles are joined into the region as they are read, and only the region is kept; its
// mapped rectangles are written once all are read (a union cannot be written before).
template <class T>
void run(const RegionOptions& o, const Steps& steps)
{
    const Transform<T> t = buildTransform<T>(steps);
    RegionBuilder builder;
    forEachItem(o.rects, o.file, "rectangle", [&](std::string_view text, const std::string& where) {
        try {
            builder.add(parseRect(text));
        } catch (const BadInput& e) {
            throw BadInput(where + ": " + e.what());
        }
    });
    if (builder.count() == 0) throw BadInput("no rectangles: give L,T,R,B arguments, --file or lines on standard input");
    const RegionHandle input = builder.finish();
    RegionPicture p;
    if (!o.svg.empty() || o.asJson) {
        p = mapRegion(t, input.get(), std::string("Transform<") + Scalar<T>::name + ">");
    } else {
        const RegionHandle output(t * input.get());
        p.after = rectanglesOf(output.get());
    }
    Output out(o.output);
    if (!o.svg.empty()) writeFileAtomically(o.svg, svgDocument({p}));
    if (o.asJson) {
        out.write("{\n  \"type\": " + jsonString(Scalar<T>::name) + ",\n  \"matrix\": " + jsonMatrix(t, o.exact) +
                  ",\n  \"region\": " + jsonRects(p.before) + ",\n  \"quadrilaterals\": " + jsonQuads(p.quads) +
                  ",\n  \"result\": " + jsonRects(p.after) + "\n}\n");
    } else {
        for (const Rect& r : p.after)
            out.write(std::to_string(r[0]) + "," + std::to_string(r[1]) + "," + std::to_string(r[2]) + "," +
                      std::to_string(r[3]) + "\n");
    }
    out.commit();
    if (p.after.empty()) {
        RECT box;
        const bool nothingGiven = GetRgnBox(input.get(), &box) == NULLREGION;
        std::fprintf(stderr, "quillon: the mapped region is empty%s\n",
                     nothingGiven ? " (the rectangles cover no pixel)" : " (the transform flattens it to no pixel)");
    }
}

} // namespace

void addRegionCommand(CLI::App& app)
{
    auto o = std::make_shared<RegionOptions>();
    auto* cmd = app.add_subcommand("region", "Map a region of rectangles through a transform built from the options");
    cmd->footer(std::string(kStepsHelp) +
                "\nThe region is the union of the rectangles L,T,R,B (the pixels L <= x < R, T <= y < B),\n"
                "given as arguments, in a file (--file) or on standard input, one per line. Each of its\n"
                "rectangles becomes a quadrilateral of its four mapped corners, truncated to integers,\n"
                "and the result is their union; its rectangles are printed as L,T,R,B, one per line.\n"
                "An empty result prints nothing and says so on standard error.\n\n"
                "Example: quillon region --turn z:30deg --move x:40 --svg turned.svg 10,10,50,20 10,20,20,50");
    cmd->add_option("--type", o->type, "Element type of the transform: float, double or guarddouble")->type_name("TYPE")->capture_default_str();
    addStepOptions(*cmd);
    cmd->add_option("rectangles", o->rects, "Rectangles L,T,R,B, or - for standard input (default: standard input)");
    cmd->add_option("--file", o->file, "Read the rectangles from a file, one L,T,R,B per line (- for standard input)")->type_name("FILE");
    cmd->add_option("--output,-o", o->output, "Write to a file, which appears only if every rectangle is good")->type_name("FILE");
    cmd->add_option("--svg", o->svg, "Draw the region before and after mapping to an SVG file")->type_name("FILE");
    cmd->add_flag("--exact", o->exact, "Print the matrix in --json output in hexadecimal (%a)");
    cmd->add_flag("--json", o->asJson, "Print JSON: the matrix, the region, the quadrilaterals and the result");
    cmd->callback([cmd, o] {
        const Steps given = givenSteps(*cmd);
        withType(TransformTypes{}, o->type, "--type", [&](auto t) { run<typename decltype(t)::type>(*o, given); });
    });
}

} // namespace tool
