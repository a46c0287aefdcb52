// SPDX-License-Identifier: MIT
// quillon region: a region of rectangles through a transform, and the SVG picture of it.
#include "region.h"
#include "steps.h"

#include <quillon/detail/RegionRectangles.h>

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
    const quillon::RegionRectangles read(region);
    if (!read.ok()) throw Failure("cannot read a region");
    std::vector<Rect> out;
    for (std::size_t k = 0; k < read.size(); ++k) {
        const RECT r = read[k];
        out.push_back({r.left, r.top, r.right, r.bottom});
    }
    return out;
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
    std::vector<Rect> given; // for the picture, as long as there are few enough to draw
    forEachItem(o.rects, o.file, "rectangle", [&](std::string_view text, const std::string& where) {
        Rect r;
        try {
            r = parseRect(text);
        } catch (const BadInput& e) {
            throw BadInput(where + ": " + e.what());
        }
        builder.add(r);
        if (!o.svg.empty() && builder.count() <= kMostRectanglesDrawn) given.push_back(r);
    });
    if (builder.count() == 0) throw BadInput("no rectangles: give L,T,R,B arguments, --file or lines on standard input");
    if (builder.count() > kMostRectanglesDrawn) given.clear();
    const RegionHandle input = builder.finish();
    RegionPicture p;
    if (!o.svg.empty() || o.asJson) {
        std::string title = std::string("Transform<") + Scalar<T>::name + ">";
        for (const auto& [option, value] : steps) title += (&option == &steps.front().first ? ": " : ", ") + option.substr(2) + " " + value;
        p = mapRegion(t, input.get(), title);
        p.given = std::move(given);
    } else {
        const RegionHandle output(t * input.get());
        p.after = rectanglesOf(output.get());
    }
    Output out(o.output);
    if (!o.svg.empty()) writeFileAtomically(o.svg, svgDocument({p}, p.after.empty() ? "the mapped region is empty" : ""));
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
