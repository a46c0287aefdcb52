// quillon map: a transform built from options taken in order, applied to points.
#include "common.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <map>

namespace tool {
namespace {

// One option as given, in command-line order: its name and its value.
using Steps = std::vector<std::pair<std::string, std::string>>;

template <class T>
Transform<T> buildTransform(const Steps& steps)
{
    Transform<T> t;
    bool first = true;
    for (const auto& [option, value] : steps) {
        // --euler and --matrix act after what came before: multiplied on the left. The first step
        // is taken as it is, so that a lone --matrix keeps every element's bits.
        const auto compose = [&](const Transform<T>& m) { t = first ? m : m * t; };
        if (option == "--euler") {
            const auto f = split(value, ',');
            if (f.size() != 3) throw BadInput("--euler takes three angles AX,AY,AZ; got '" + value + "'");
            compose(Transform<T>(parseAngle(f[0]), parseAngle(f[1]), parseAngle(f[2])));
        } else if (option == "--matrix") {
            compose(parseMatrix<T>(split(value, ','), "--matrix"));
        } else {
            const auto [axis, text] = parseAxisValue(value, option);
            const int k = axis - 'x';
            if (option == "--turn") {
                const double angle = parseAngle(text);
                k == 0 ? t.Function_2422(angle) : k == 1 ? t.Function_2423(angle) : t.Function_2424(angle);
            } else if (option == "--scale") {
                const T factor = Scalar<T>::parse(text);
                k == 0 ? t.Function_2425(factor) : k == 1 ? t.Function_2426(factor) : t.Function_2427(factor);
            } else {
                t.Function_2428(axis, Scalar<T>::parse(text));
            }
        }
        first = false;
    }
    return t;
}

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

// The options that change the transform, each one value per use, repeatable.
struct Step {
    const char *name, *value, *help;
};
constexpr Step kSteps[] = {
    {"--euler", "AX,AY,AZ", "Rotation Rx(AX) Ry(AY) Rz(AZ): turns about z first, then y, then x"},
    {"--turn", "AXIS:ANGLE", "Turn about an axis: x, y or z"},
    {"--scale", "AXIS:FACTOR", "Multiply the diagonal element of an axis by a factor"},
    {"--move", "AXIS:AMOUNT", "Add an amount to the translation along an axis"},
    {"--matrix", "E0,...,E15", "Sixteen elements, row by row, separated by commas"},
};

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
    map->footer(
        "Each option acts after the ones before it: --turn, --scale and --move are the members that\n"
        "change a transform in place; --euler and --matrix are multiplied on the left (a leading one\n"
        "is taken as it is). Angles are radians, or degrees with the suffix deg (30deg).\n"
        "Points are X,Y,Z arguments, or else CSV lines X,Y,Z on standard input; each result is\n"
        "printed as X,Y,Z in the vector's element type.\n\n"
        "Example: quillon map --turn z:90deg --move x:10 1,0,0");
    map->add_option("--type", o->type, "Element type of the transform: float, double or guarddouble")->capture_default_str();
    map->add_option("--vector", o->vector,
                    "Element type of the points: int, float, double, guardint, guardfloat or guarddouble (default: as --type)");
    for (const auto& [name, value, help] : kSteps)
        map->add_option(name, help)->type_name(value)->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    map->add_option("points", o->points, "Points X,Y,Z (default: CSV lines on standard input)");
    map->add_flag("--exact", o->exact, "Print floating-point values in hexadecimal (%a), bit for bit");
    map->add_flag("--json", o->asJson, "Print JSON: the matrix, and each point with its image");
    map->callback([map, o] {
        Steps given;
        std::map<std::string, std::size_t> used; // how many values of each option are taken
        for (const CLI::Option* option : map->parse_order()) {
            const auto name = option->get_name();
            for (const auto& step : kSteps)
                if (name == step.name) given.emplace_back(name, option->results().at(used[name]++));
        }
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
