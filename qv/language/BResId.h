/// \file
/// BResId: a row of the numbered string table, by id. Error codes are ids: the row of a code
/// holds its key, which QVTl turns into words. Rows are either keys or plain labels and are
/// handed out as they stand. The rows come from a callback, by default the string table of the
/// resource module, which is this library's own; an application brings the rest of its rows
/// with qv::platform::LoadStringTable. docs/language-files.md tells the decisions.
#pragma once

#include <cstdint>
#include <qv/core/Export.h>
#include <qv/core/strings/WString.h>
#include <qv/platform/StringResources.h>

class QV_EXPORT BResId {
public:
    /// Fills text with the row of an id and answers whether there was one.
    using LoadByResourceIdCallback = bool (*)(WString& text, unsigned int id);

    BResId(unsigned int id) : m_id(id) {}
    BResId(BResId const&) = default;
    BResId& operator=(BResId const&) = default;

    unsigned int Id() const { return m_id; }
    /// The row's text through the registered callback; the empty string for an id without text.
    operator WString() const;

    /// Replaces the callback that reads rows; null is ignored, so there always is one. Set it
    /// at start-up, before threads read rows.
    static void RegisterLoadByResourceIdCallback(LoadByResourceIdCallback callback);
    /// Replaces the module whose table LoadStringFromModule reads; null is ignored. Set it at
    /// start-up, before threads read rows.
    static void SetResourceModule(HMODULE module);
    /// The row of the resource module: true and text set, or false with text as it was for an
    /// id without text (an empty row counts as none). The default callback.
    static bool LoadStringFromModule(WString& text, unsigned int id);

private:
    std::uint32_t m_id;

    static LoadByResourceIdCallback m_stc_LoadByResourceIdCallback;
    static HMODULE m_stc_hModule;
};
