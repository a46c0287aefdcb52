// quillon map: a transform built from options taken in order, applied to points.
#include "steps.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace tool {
namespace {

template <class B>
ThreeDVector<B> parsePoint(std::string_view text)
{
    const auto f = split(text, ',');
    if (f.size() != 3)
        throw BadInput("expected three numbers X,Y,Z, got " + std::to_string(f.size()));
    return ThreeDVector<B>(Scalar<B>::parse(f[0]), Scalar<B>::parse(f[1]), Scalar<B>::parse(f[2]));
}

// The points of the arguments, or else one per line of standard input (blank lines and lines
// starting with # are skipped). An error names the argument or line it comes from.
template <class B>
std::vector<ThreeDVector<B>> readPoints(const std::vector<std::string>& arguments)
{
    std::vector<ThreeDVector<B>> points;
    const auto add = [&](std::string_view text, const std::string& where) {
        try {
            points.push_back(parsePoint<B>(text));
        } catch (const BadInput& e) {
            throw BadInput(where + ": " + e.what());
        }
    };
    for (const auto& a : arguments) add(a, "point '" + a + "'");
    if (!arguments.empty()) return points;
    std::string line;
    for (int number = 1; std::getline(std::cin, line); ++number)
        if (!trim(line).empty() && trim(line)[0] != '#') add(line, "standard input, line " + std::to_string(number));
    return points;
}

template <class B>
std::string formatPoint(const ThreeDVector<B>& p, bool exact, bool asJson)
{
    const std::vector<B> c{p.GetX(), p.GetY(), p.GetZ()};
    if (asJson) return jsonArray(c, [&](const B& v) { return json(v, exact); });
    return format(c[0], exact) + "," + format(c[1], exact) + "," + format(c[2], exact);
}

struct MapOptions {
    std::string type = "double", vector;
    std::vector<std::string> points;
    bool exact = false, asJson = false;
};

template <class T, class B>
std::string run(const MapOptions& o, const Steps& steps)
{
    const Transform<T> t = buildTransform<T>(steps);
    const auto points = readPoints<B>(o.points);
    std::string out;
    for (const auto& p : points) {
        const ThreeDVector<B> image = t * p;
        if (o.asJson)
            out += std::string(out.empty() ? "" : ",\n") + "    {\"in\": " + formatPoint(p, o.exact, true) +
                   ", \"out\": " + formatPoint(image, o.exact, true) + "}";
        else
            out += formatPoint(image, o.exact, false) + "\n";
    }
    if (!o.asJson) return out;
    return "{\n  \"type\": " + jsonString(Scalar<T>::name) + ",\n  \"vector\": " + jsonString(Scalar<B>::name) +
           ",\n  \"matrix\": " + jsonMatrix(t, o.exact) + ",\n  \"points\": [\n" + out + (out.empty() ? "" : "\n") + "  ]\n}\n";
}

} // namespace

void addMapCommand(CLI::App& app)
{
    auto o = std::make_shared<MapOptions>();
    auto* map = app.add_subcommand("map", "Build a transform from the options, in the order given, and map points");
    map->footer(std::string(kStepsHelp) +
                "Points are X,Y,Z arguments, or else CSV lines X,Y,Z on standard input; each image is\n"
                "printed as X,Y,Z in the points' element type.\n\n"
                "Example: quillon map --turn z:90deg --move x:10 1,0,0");
    map->add_option("--type", o->type, "Element type of the transform: float, double or guarddouble")->capture_default_str();
    map->add_option("--vector", o->vector,
                    "Element type of the points: int, float, double, guardint, guardfloat or guarddouble (default: as --type)");
    addStepOptions(*map);
    map->add_option("points", o->points, "Points X,Y,Z (default: CSV lines on standard input)");
    map->add_flag("--exact", o->exact, "Print floating-point values in hexadecimal (%a), bit for bit");
    map->add_flag("--json", o->asJson, "Print JSON: the matrix, and each point with its image");
    map->callback([map, o] {
        const Steps given = givenSteps(*map);
        std::string out;
        withType(TransformTypes{}, o->type, "--type", [&](auto t) {
            using T = typename decltype(t)::type;
            withType(VectorTypes{}, o->vector.empty() ? o->type : o->vector, "--vector", [&](auto b) {
                out = run<T, typename decltype(b)::type>(*o, given);
            });
        });
        std::cout << out;
    });
}

} // namespace tool
