// qvtool: looks into every file the library reads and writes, for service engineers and
// translators who have the files but not the application. Arguments are parsed by CLI11;
// everything else goes through the library's public interface.
#include "Commands.h"
#include "Digest.h"
#include "Formats.h"
#include "Language.h"

#include <CLI/CLI.hpp>
#include <cstdio>

namespace {

constexpr char kVersion[] = "qvtool 0.1.0";

// What the command line gave; the subcommands' callbacks read it after parsing.
struct Arguments {
    std::string file;
    bool asJson = false;
    std::vector<std::string> files;
    std::string target, reference, translation, pattern = "*.txt";
    std::string section, key, value;
    bool replace = false;
    int status = qvtool::kExitSound;
};

void AddFileCommand(CLI::App& app, char const* name, char const* help, Arguments& args,
                    int (*run)(std::string const&, bool)) {
    CLI::App* command = app.add_subcommand(name, help);
    command->add_option("FILE", args.file, "the file to look into")->required();
    command->add_flag("--json", args.asJson, "one JSON document instead of an outline");
    command->callback([&args, run] { args.status = run(args.file, args.asJson); });
}

void AddLanguageCommands(CLI::App& app, Arguments& args) {
    CLI::App* lang = app.add_subcommand("lang", "the language-file operations of translators");
    lang->require_subcommand(1);
    CLI::App* import = lang->add_subcommand(
        "import", "imports language files into one map and prints the report of each import");
    import->add_option("FILE", args.files, "language files")->required();
    import->add_flag("--replace", args.replace, "a later file's entry replaces an earlier one");
    import->callback([&args] { args.status = qvtool::language::Import(args.files, args.replace);
});
CLI::App* exporter =
    lang->add_subcommand("export", "imports language files and writes the joined map");
exporter->add_option("TARGET", args.target, "the language file to write")->required();
exporter->add_option("FILE", args.files, "language files to read")->required();
exporter->callback([&args] { args.status = qvtool::language::Export(args.target, args.files); });
CLI::App* merge = lang->add_subcommand(
    "merge", "joins new reference files with an old translation into a target directory; "
             "keys the translation lacks are marked \"new entry!\"");
merge->add_option("REFERENCE", args.reference, "directory of the new reference files")->required();
merge->add_option("TRANSLATION", args.translation, "directory of the old translation")->required();
merge->add_option("TARGET", args.target, "directory to write the merged files to")->required();
merge->add_option("--pattern", args.pattern, "which reference files (Windows wildcards)")
    ->capture_default_str();
merge->callback([&args] {
    args.status =
        qvtool::language::Merge(args.reference, args.translation, args.target, args.pattern);
});
} // namespace

void AddProfileCommands(CLI::App& app, Arguments& args) {
    CLI::App* profile = app.add_subcommand(
        "profile", "reads and writes binary and ini profiles (the class is picked by the "
                   "file's first bytes)");
    profile->require_subcommand(1);
    CLI::App* get = profile->add_subcommand(
        "get", "the value of a key; with a section only, its keys; with neither, the sections");
    CLI::App* list = profile->add_subcommand("list", "the sections, or the keys of a section");
    for (CLI::App* command : {get, list}) {
        command->add_option("FILE", args.file, "the profile")->required();
        command->add_option("SECTION", args.section, "a section");
    }
    get->add_option("KEY", args.key, "a key of the section");
    get->callback(
        [&args] { args.status = qvtool::profile::Get(args.file, args.section, args.key); });
    list->callback([&args] { args.status = qvtool::profile::List(args.file, args.section); });
    CLI::App* set = profile->add_subcommand(
        "set", "writes a value; in a binary profile a number or flag keeps its type");
    set->add_option("FILE", args.file, "the profile")->required();
    set->add_option("SECTION", args.section, "the section")->required();
    set->add_option("KEY", args.key, "the key")->required();
    set->add_option("VALUE", args.value, "the new value")->required();
    set->callback([&args] {
        args.status = qvtool::profile::Set(args.file, args.section, args.key, args.value);
    });
}

void AddServiceCommands(CLI::App& app, Arguments& args) {
    CLI::App* sha1 = app.add_subcommand("sha1", "prints the SHA-1 digest of each file");
    sha1->add_option("FILE", args.files, "files to digest")->required();
    sha1->callback([&args] { args.status = qvtool::Sha1(args.files); });
    app.add_subcommand("guid", "prints a new identifier")->callback([&args] {
        args.status = qvtool::NewGuid();
    });
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"Looks into the files of the measuring application: object and stream "
                 "archives, profiles, language files, registry store files, profiler logs."};
    app.set_version_flag("--version", kVersion);
    app.require_subcommand(1);
    Arguments args;
    AddFileCommand(app, "info", "what kind of file it is, with a short summary", args,
                   &qvtool::Info);
    AddFileCommand(app, "dump", "everything the file holds", args, &qvtool::Dump);
    AddFileCommand(app, "check",
                   "validates the file: exit 0 when sound, 1 when damaged (the first bad "
                   "record and why)",
                   args, &qvtool::Check);
    AddLanguageCommands(app, args);
    AddProfileCommands(app, args);
    AddServiceCommands(app, args);
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        int code = app.exit(error);
        return code == 0 ? 0 : qvtool::kExitUsage;
    } catch (qvtool::Failure const& failure) {
        std::fprintf(stderr, "qvtool: %s\n", failure.message.c_str());
        return failure.status;
    }
    return args.status;
}
