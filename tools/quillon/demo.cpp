// SPDX-License-Identifier: MIT
// quillon demo (also what a bare quillon runs): one region turned and moved by a transform over
// float, double and guarddouble, step by step, with a picture of the region before and after.
#include "region.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace tool {
namespace {

const std::vector<Rect> kRegion = {{10, 10, 50, 20}, {10, 20, 20, 50}, {30, 30, 45, 45}};
constexpr double kTurn = 0.5235987755982988; // 30 degrees
constexpr double kMove = 40;

std::string textRects(const std::vector<Rect>& rects)
{
    std::string out;
    for (std::size_t k = 0; k < rects.size(); ++k) {
        const Rect& r = rects[k];
        out += "  " + std::to_string(r[0]) + "," + std::to_string(r[1]) + "," +
               std::to_string(r[2]) + "," + std::to_string(r[3]) + (k % 5 == 4 || k + 1 == rects.size() ? "\n" : "");
    }
    return out;
}

struct Outcome {
    std::string text, json;
    RegionPicture picture;
};

// The identity, a turn about z, a move along x, then the region through the transform.
template <class T>
Outcome demo()
{
    const std::string name = std::string("Transform<") + Scalar<T>::name + ">";
    Transform<T> t;
    std::vector<std::pair<std::string, Transform<T>>> steps{{"identity", t}};
    t.Function_2424(kTurn);
    steps.emplace_back("turn of 30 degrees about z: Function_2424(0.5235987755982988)", t);
    t.Function_2428('x', T(kMove));
    steps.emplace_back("move of 40 along x: Function_2428('x', 40)", t);
    Outcome o{"== " + name + "\n", "", mapRegion(t, kRegion, name + ": turn z 30deg, move x 40")};
    std::vector<std::string> jsonSteps;
    for (const auto& [what, m] : steps) {
        o.text += what + "\n" + formatMatrix(m, false);
        jsonSteps.push_back("{\"step\": " + jsonString(what) + ", \"matrix\": " + jsonMatrix(m, false) + "}");
    }
    o.text += "mapped region: " + std::to_string(o.picture.after.size()) + " rectangles\n" + textRects(o.picture.after) + "\n";
    o.json = "    {\"type\": " + jsonString(Scalar<T>::name) + ",\n     \"steps\": " +
             jsonArray(jsonSteps, [](const std::string& s) { return s; }) + ",\n     \"quadrilaterals\": " +
             jsonQuads(o.picture.quads) + ",\n     \"result\": " + jsonRects(o.picture.after) + "}";
    return o;
}

} // namespace

void addDemoCommand(CLI::App& app)
{
    auto svg = std::make_shared<std::string>();
    auto asJson = std::make_shared<bool>(false);
    auto* cmd = app.add_subcommand("demo", "Turn and move a region over float, double and guarddouble (what a bare quillon runs)");
    cmd->footer("Builds the identity, turns it by 30 degrees about z and moves it by 40 along x, for each\n"
                "element type; prints each step's matrix and the rectangles of the mapped region, and draws\n"
                "the region before and after mapping to an SVG file if asked (--svg FILE).");
    cmd->add_option("--svg", *svg, "Draw the region before and after mapping to an SVG file")->type_name("FILE");
    cmd->add_flag("--json", *asJson, "Print JSON");
    cmd->callback([svg, asJson] {
        std::vector<Outcome> outcomes;
        [&]<class... T>(Types<T...>) { (outcomes.push_back(demo<T>()), ...); }(TransformTypes{});
        // The pixels where the element types disagree: in one result and not in another.
        RegionHandle disagree = makeRegion({});
        for (const auto& a : outcomes)
            for (const auto& b : outcomes) {
                const RegionHandle ra = makeRegion(a.picture.after), rb = makeRegion(b.picture.after);
                if (CombineRgn(ra.get(), ra.get(), rb.get(), RGN_XOR) == ERROR ||
                    CombineRgn(disagree.get(), disagree.get(), ra.get(), RGN_OR) == ERROR)
                    throw Failure("cannot make a region");
            }
        const std::vector<Rect> marked = rectanglesOf(disagree.get());
        std::size_t pixels = 0;
        for (const Rect& r : marked) pixels += static_cast<std::size_t>(r[2] - r[0]) * static_cast<std::size_t>(r[3] - r[1]);
        std::vector<RegionPicture> pictures;
        std::string text = "region of " + std::to_string(kRegion.size()) + " rectangles (left,top,right,bottom)\n" +
                           textRects(kRegion) + "\n";
        std::string json;
        for (const auto& o : outcomes) {
            pictures.push_back(o.picture);
            // Split into the pixels this type has (filled) and the ones it lacks (hollow).
            const RegionHandle has = makeRegion(marked), lacks = makeRegion(marked), after = makeRegion(o.picture.after);
            if (CombineRgn(has.get(), has.get(), after.get(), RGN_AND) == ERROR ||
                CombineRgn(lacks.get(), lacks.get(), after.get(), RGN_DIFF) == ERROR)
                throw Failure("cannot make a region");
            pictures.back().marked = rectanglesOf(has.get());
            pictures.back().lacking = rectanglesOf(lacks.get());
            text += o.text;
            json += (json.empty() ? "" : ",\n") + o.json;
        }
        const std::string note = pixels == 0 ? "float, double and guarddouble give the same pixels"
                                 : "orange: the " + std::to_string(pixels) + (pixels == 1 ? " pixel" : " pixels") +
                                       " that float, double and guarddouble disagree on (filled: this type has it)";
        text += note + "\n";
        if (!svg->empty()) writeFileAtomically(*svg, svgDocument(pictures, note));
        if (*asJson)
            std::cout << "{\n  \"region\": " << jsonRects(kRegion) << ",\n  \"svg\": " << (svg->empty() ? "null" : jsonString(*svg))
                      << ",\n  \"types\": [\n" << json << "\n  ]\n}\n";
        else
            std::cout << text << (svg->empty() ? "no picture (quillon demo --svg FILE draws one)" : "picture: " + *svg) << "\n";
    });
}

} // namespace tool
