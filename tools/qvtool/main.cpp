// qvtool: looks into every file the library reads and writes, for service engineers and
// translators who have the files but not the application. Arguments are parsed by CLI11;
// everything else goes through the library's public interface.
#include "Commands.h"

#include <CLI/CLI.hpp>
#include <cstdio>

namespace {

constexpr char kVersion[] = "qvtool 0.1.0";

void AddFileCommand(CLI::App& app, char const* name, char const* help, std::string& file,
                    bool& asJson, int (*run)(std::string const&, bool), int& status) {
    CLI::App* command = app.add_subcommand(name, help);
    command->add_option("FILE", file, "the file to look into")->required();
    command->add_flag("--json", asJson, "one JSON document instead of an outline");
    command->callback([&file, &asJson, run, &status] { status = run(file, asJson); });
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"Looks into the files of the measuring application: object and stream "
                 "archives, profiles, language files, registry store files, profiler logs."};
    app.set_version_flag("--version", kVersion);
    app.require_subcommand(1);
    std::string file;
    bool asJson = false;
    int status = qvtool::kExitSound;
    AddFileCommand(app, "info", "what kind of file it is, with a short summary", file, asJson,
                   &qvtool::Info, status);
    AddFileCommand(app, "dump", "everything the file holds", file, asJson, &qvtool::Dump, status);
    AddFileCommand(app, "check",
                   "validates the file: exit 0 when sound, 1 when damaged (the first bad "
                   "record and why)",
                   file, asJson, &qvtool::Check, status);
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        int code = app.exit(error);
        return code == 0 ? 0 : qvtool::kExitUsage;
    } catch (qvtool::Failure const& failure) {
        std::fprintf(stderr, "qvtool: %s\n", failure.message.c_str());
        return failure.status;
    }
    return status;
}
