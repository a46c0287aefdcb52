// SPDX-License-Identifier: MIT
// quillon map: a transform built from options taken in order, applied to points.
#include "steps.h"

#include <CLI/CLI.hpp>


namespace tool {
namespace {

template <class B>
std::string formatPoint(const ThreeDVector<B>& p, bool exact, bool asJson)
{
    const std::vector<B> c{p.GetX(), p.GetY(), p.GetZ()};
    if (asJson) return jsonArray(c, [&](const B& v) { return json(v, exact); });
    return format(c[0], exact) + "," + format(c[1], exact) + "," + format(c[2], exact);
}

struct MapOptions {
    std::string type = "double", vector, file, output;
    std::vector<std::string> points;
    bool exact = false, asJson = false;
};

// Reads, maps and writes one point at a time: the memory taken does not grow with the input. An
// error stops the command where it is; the lines before it are written (to --output, nothing).
template <class T, class B>
void run(const MapOptions& o, const Steps& steps)
{
    const Transform<T> t = buildTransform<T>(steps);
    Output out(o.output);
    if (o.asJson)
        out.write("{\n  \"type\": " + jsonString(Scalar<T>::name) + ",\n  \"vector\": " + jsonString(Scalar<B>::name) +
                  ",\n  \"matrix\": " + jsonMatrix(t, o.exact) + ",\n  \"points\": [");
    bool first = true;
    forEachItem(o.points, o.file, "point", [&](std::string_view text, const std::string& where) {
        ThreeDVector<B> p;
        try {
            p = parsePoint<B>(text);
        } catch (const BadInput& e) {
            throw BadInput(where + ": " + e.what());
        }
        const ThreeDVector<B> image = t * p;
        if (o.asJson)
            out.write(std::string(first ? "\n" : ",\n") + "    {\"in\": " + formatPoint(p, o.exact, true) +
                      ", \"out\": " + formatPoint(image, o.exact, true) + "}");
        else
            out.write(formatPoint(image, o.exact, false) + "\n");
        first = false;
    });
    if (o.asJson) out.write(first ? "]\n}\n" : "\n  ]\n}\n");
    out.commit();
}

} // namespace

void addMapCommand(CLI::App& app)
{
    auto o = std::make_shared<MapOptions>();
    auto* map = app.add_subcommand("map", "Build a transform from the options, in the order given, and map points");
    map->footer(std::string(kStepsHelp) +
                "Points are X,Y,Z arguments, or CSV lines X,Y,Z of a file (--file) or of standard input\n"
                "(no arguments, or -); blank lines and lines starting with # are skipped. Each image is\n"
                "printed as X,Y,Z in the points' element type, one line per point, as it is read.\n\n"
                "Example: quillon map --turn z:90deg --move x:10 1,0,0");
    map->add_option("--type", o->type, "Element type of the transform: float, double or guarddouble")->type_name("TYPE")->capture_default_str();
    map->add_option("--vector", o->vector,
                    "Element type of the points: int, float, double, guardint, guardfloat or guarddouble (default: as --type)")->type_name("TYPE");
    addStepOptions(*map);
    map->add_option("points", o->points, "Points X,Y,Z, or - for standard input (default: standard input)");
    map->add_option("--file", o->file, "Read the points from a file, one X,Y,Z per line (- for standard input)")->type_name("FILE");
    map->add_option("--output,-o", o->output, "Write to a file, which appears only if every point is good")->type_name("FILE");
    map->add_flag("--exact", o->exact, "Print floating-point values in hexadecimal (%a), bit for bit");
    map->add_flag("--json", o->asJson, "Print JSON: the matrix, and each point with its image");
    map->callback([map, o] {
        const Steps given = givenSteps(*map);
        withType(TransformTypes{}, o->type, "--type", [&](auto t) {
            using T = typename decltype(t)::type;
            withType(VectorTypes{}, o->vector.empty() ? o->type : o->vector, "--vector", [&](auto b) {
                run<T, typename decltype(b)::type>(*o, given);
            });
        });
    });
}

} // namespace tool
