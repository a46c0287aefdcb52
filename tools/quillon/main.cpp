// quillon: the library's command-line tool. Each command computes its whole output before it
// writes any of it; bad input gives one line on standard error and exit status 2.
#include "common.h"

#include <CLI/CLI.hpp>

#include <iostream>

int main(int argc, char** argv)
{
    CLI::App app{"quillon: exact 4x4 transforms over float, double and guarddouble"};
    app.name("quillon");
    app.require_subcommand(1);
    app.footer("A bare quillon runs the demo. Each command has --help and --json; bad input gives one\n"
               "line on standard error and exit status 2, and writes no file.");
    tool::addMapCommand(app);
    tool::addMatrixCommand(app);
    tool::addRegionCommand(app);
    tool::addInfoCommand(app);
    tool::addDemoCommand(app);
    char demo[] = "demo";
    char* bare[] = {argv[0], demo, nullptr};
    try {
        if (argc > 1 && argv[1][0] != '-' && app.get_subcommands([&](CLI::App* c) { return c->check_name(argv[1]); }).empty())
            throw tool::BadInput(std::string("unknown command '") + argv[1] + "' (expected map, matrix, region, info or demo)");
        if (argc == 1)
            app.parse(2, bare); // a bare quillon runs the demo
        else
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
    return 0;
}
