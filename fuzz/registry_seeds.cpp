// Seeds of the registry fuzzer: the export file regedit wrote, kept with the tests.
#include <filesystem>
#include <fstream>

int main(int argc, char** argv) {
    if (argc < 2)
        return 2;
    std::filesystem::copy_file(QV_SOURCE_DIR "/tests/data/registry_exported_by_regedit.reg",
                               std::filesystem::path(argv[1]) / "regedit.reg",
                               std::filesystem::copy_options::overwrite_existing);
    return 0;
}
