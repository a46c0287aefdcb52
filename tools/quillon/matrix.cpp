// SPDX-License-Identifier: MIT
// quillon matrix: determinant, adjoint, inverse and transpose of one matrix.
#include "common.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace tool {
namespace {

struct MatrixOptions {
    std::string type = "double";
    std::vector<std::string> elements;
    bool exact = false, asJson = false;
};

template <class T>
std::string run(const MatrixOptions& o)
{
    const Transform<T> m = parseMatrix<T>(joinFields(o.elements), "a matrix");
    const T determinant = m.Function_2414();
    const bool singular = !(determinant != T(0.0)); // the test the inverse itself makes
    const std::pair<const char*, Transform<T>> results[] = {
        {"adjoint", m.Function_2412()}, {"inverse", m.Function_2415()}, {"transpose", m.Function_2417()}};
    if (o.asJson) {
        std::string out = "{\n  \"type\": " + jsonString(Scalar<T>::name) + ",\n  \"matrix\": " + jsonMatrix(m, o.exact) +
                          ",\n  \"determinant\": " + json(determinant, o.exact) +
                          ",\n  \"singular\": " + (singular ? "true" : "false");
        for (const auto& [name, r] : results) out += ",\n  \"" + std::string(name) + "\": " + jsonMatrix(r, o.exact);
        return out + "\n}\n";
    }
    std::string out = std::string("matrix (") + Scalar<T>::name + ")\n" + formatMatrix(m, o.exact) +
                      "determinant " + format(determinant, o.exact) + "\n";
    for (const auto& [name, r] : results)
        out += std::string(name) + (singular && name == std::string_view("inverse") ? " (singular: the identity)" : "") +
               "\n" + formatMatrix(r, o.exact);
    return out;
}

} // namespace

void addMatrixCommand(CLI::App& app)
{
    auto o = std::make_shared<MatrixOptions>();
    auto* cmd = app.add_subcommand("matrix", "Determinant, adjoint, inverse and transpose of a matrix");
    cmd->footer(
        "The sixteen elements are given row by row, as separate arguments or separated by commas.\n"
        "A singular matrix (determinant exactly 0) has the identity for its inverse.\n\n"
        "Example: quillon matrix --type float 2,0,0,1 0,4,0,0 0,0,8,0 0,0,0,1");
    cmd->add_option("--type", o->type, "Element type: float, double or guarddouble")->type_name("TYPE")->capture_default_str();
    cmd->add_option("elements", o->elements, "Sixteen elements, row by row");
    cmd->add_flag("--exact", o->exact, "Print floating-point values in hexadecimal (%a), bit for bit");
    cmd->add_flag("--json", o->asJson, "Print JSON");
    cmd->callback([o] {
        std::string out;
        withType(TransformTypes{}, o->type, "--type", [&](auto t) { out = run<typename decltype(t)::type>(*o); });
        std::cout << out;
    });
}

} // namespace tool
