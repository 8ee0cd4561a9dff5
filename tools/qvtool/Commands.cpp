#include "Commands.h"

#include "Formats.h"
#include "Language.h"
#include "ObjectArchive.h"

#include <filesystem>

namespace qvtool {

namespace {

KindHandler const kObjectArchive = {&object_archive::Info, &object_archive::Dump,
                                    &object_archive::Check};
KindHandler const kLanguageFile = {&language::Info, &language::Dump, &language::Check};
KindHandler const kStreamArchive = {&stream_archive::Info, &stream_archive::Dump,
                                    &stream_archive::Check};
KindHandler const kProfile = {&profile::Info, &profile::Dump, &profile::Check};
KindHandler const kRegistryFile = {&registry_file::Info, &registry_file::Dump,
                                   &registry_file::Check};
KindHandler const kProfilerLog = {&profiler_log::Info, &profiler_log::Dump, &profiler_log::Check};

// The kind of a file that must exist; a missing or unreadable one is a usage error.
FileKind KindOf(std::string const& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        throw Failure{kExitUsage, path + ": no such file"};
    return Recognise(path);
}

KindHandler const& Handler(std::string const& path, FileKind kind) {
    KindHandler const* handler = HandlerOf(kind);
    if (!handler)
        throw Failure{kExitDamaged, path + ": not a file qvtool reads (" + KindName(kind) + ")"};
    return *handler;
}

json Titled(std::string const& path, FileKind kind, json body) {
    json document = {{"file", path}, {"kind", KindName(kind)}};
    document.update(body);
    return document;
}

} // namespace

KindHandler const* HandlerOf(FileKind kind) {
    switch (kind) {
    case FileKind::ObjectArchive:
        return &kObjectArchive;
    case FileKind::LanguageFile:
        return &kLanguageFile;
    case FileKind::StreamArchive:
        return &kStreamArchive;
    case FileKind::BinaryProfileAnsi:
    case FileKind::BinaryProfileUnicode:
    case FileKind::IniProfile:
        return &kProfile;
    case FileKind::RegistryFile:
        return &kRegistryFile;
    case FileKind::ProfilerLog:
        return &kProfilerLog;
    case FileKind::Unknown:
        break;
    }
    return nullptr;
}

int Info(std::string const& path, bool asJson) {
    FileKind kind = KindOf(path);
    KindHandler const* handler = HandlerOf(kind);
    json body = handler ? handler->info(path) : json::object();
    Print(Titled(path, kind, body), asJson);
    return kind == FileKind::Unknown ? kExitDamaged : kExitSound;
}

int Dump(std::string const& path, bool asJson) {
    FileKind kind = KindOf(path);
    Print(Titled(path, kind, Handler(path, kind).dump(path)), asJson);
    return kExitSound;
}

int Check(std::string const& path, bool asJson) {
    FileKind kind = KindOf(path);
    json verdict = Handler(path, kind).check(path);
    Print(Titled(path, kind, verdict), asJson);
    return verdict.value("sound", false) ? kExitSound : kExitDamaged;
}

} // namespace qvtool
