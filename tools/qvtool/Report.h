// What every subcommand produces: a JSON document. Text output is that document drawn as an
// indented outline, so the two forms never say different things.
#pragma once

#include <nlohmann/json.hpp>
#include <qv/qvcore.h>
#include <string>

namespace qvtool {

// Keys keep the order in which a command wrote them: a summary reads top-down.
using json = nlohmann::ordered_json;

/// UTF-8 text of a library string, whatever its width.
std::string Utf8(WString const& text);
std::string Utf8(BString const& text); // ANSI code page to UTF-8
std::u16string Wide(std::string const& utf8Path);

/// Prints \p document as JSON (two-space indent) or as an outline.
void Print(json const& document, bool asJson);

/// A failure that ends the command: message on standard error, and the exit status.
struct Failure {
    int status;
    std::string message;
};
constexpr int kExitSound = 0;
constexpr int kExitDamaged = 1;
constexpr int kExitUsage = 2;

} // namespace qvtool
