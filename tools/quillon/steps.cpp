// SPDX-License-Identifier: MIT
#include "steps.h"

#include <CLI/CLI.hpp>

#include <map>

namespace tool {
namespace {

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

} // namespace

const char* const kStepsHelp =
    "The transform starts as the identity and each option acts after the ones before it: --turn,\n"
    "--scale and --move are the members that change a transform in place; --euler and --matrix are\n"
    "multiplied on the left (a leading one is taken as it is). Angles are radians, or degrees with\n"
    "the suffix deg (30deg is 30 * (pi / 180)).\n";

void addStepOptions(CLI::App& command)
{
    for (const auto& [name, value, help] : kSteps)
        command.add_option(name, help)->type_name(value)->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

Steps givenSteps(const CLI::App& command)
{
    Steps given;
    std::map<std::string, std::size_t> used; // how many values of each option are taken
    for (const CLI::Option* option : command.parse_order()) {
        const auto name = option->get_name();
        for (const auto& step : kSteps)
            if (name == step.name) given.emplace_back(name, option->results().at(used[name]++));
    }
    return given;
}

} // namespace tool
