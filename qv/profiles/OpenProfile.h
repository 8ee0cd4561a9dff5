/// \file
/// OpenProfile: the profile class for a file, picked by its first bytes.
#pragma once

#include <qv/core/Export.h>
#include <qv/core/SP.h>
#include <qv/profiles/BProfileBase.h>

/// A read-only profile on \p path: a BBinProfile when the file starts with one of the binary
/// magics, else a BProfile, whatever the file holds. Null when the file cannot be opened.
[[nodiscard]] QV_EXPORT SP<BProfileBase> OpenProfile(WString path);
