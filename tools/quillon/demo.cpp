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
    Outcome o{"== " + name + "\n", "", mapRegion(t, kRegion, name)};
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
        std::vector<RegionPicture> pictures;
        std::string text = "region of " + std::to_string(kRegion.size()) + " rectangles (left,top,right,bottom)\n" +
                           textRects(kRegion) + "\n";
        std::string json;
        for (const auto& o : outcomes) {
            pictures.push_back(o.picture);
            text += o.text;
            json += (json.empty() ? "" : ",\n") + o.json;
        }
        if (!svg->empty()) writeFileAtomically(*svg, svgDocument(pictures));
        if (*asJson)
            std::cout << "{\n  \"region\": " << jsonRects(kRegion) << ",\n  \"svg\": " << (svg->empty() ? "null" : jsonString(*svg))
                      << ",\n  \"types\": [\n" << json << "\n  ]\n}\n";
        else
            std::cout << text << (svg->empty() ? "no picture (quillon demo --svg FILE draws one)" : "picture: " + *svg) << "\n";
    });
}

} // namespace tool
