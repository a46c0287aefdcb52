// SPDX-License-Identifier: MIT
// The options that build a transform, shared by map and region: --euler, --turn, --scale,
// --move and --matrix, each repeatable and taken in the order given on the command line.
#ifndef QUILLON_TOOL_STEPS_H
#define QUILLON_TOOL_STEPS_H

#include "common.h"

namespace tool {

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

// Adds the five options to a command, and reads them back in command-line order after parsing.
void addStepOptions(CLI::App& command);
Steps givenSteps(const CLI::App& command);

// What the options do, for the commands' help.
extern const char* const kStepsHelp;

} // namespace tool

#endif
