// quillon: the library's command-line tool. Each command computes its whole output before it
// writes any of it; bad input gives one line on standard error and exit status 2.
#include "common.h"

#include <CLI/CLI.hpp>

#include <iostream>

int main(int argc, char** argv)
{
    CLI::App app{"quillon: exact 4x4 transforms over float, double and guarddouble"};
    app.name("quillon");
    app.require_subcommand(0, 1);
    tool::addMapCommand(app);
    tool::addMatrixCommand(app);
    tool::addInfoCommand(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForAllHelp& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        std::cerr << "quillon: " << e.what() << "\n";
        return 2;
    } catch (const tool::BadInput& e) {
        std::cerr << "quillon: " << e.what() << "\n";
        return 2;
    } catch (const std::exception& e) {
        std::cerr << "quillon: " << e.what() << "\n";
        return 1;
    }
    if (app.get_subcommands().empty()) std::cout << app.help();
    return 0;
}
