/// \file
/// QVTl and QVTlExt: the short way to the registered language map. The library translates
/// nothing itself; the application calls these at the last moment before text reaches the user.
#pragma once

#include <qv/core/Export.h>
#include <qv/core/strings/WString.h>

/// The registered map's Translate of text: a key's words, any other text unchanged. Without a
/// registered map the text comes back as it is. Safe on several threads while nobody registers
/// or fills a map.
QV_EXPORT WString QVTl(WString const& text);
/// The registered map's TranslateExt: every key inside a sentence translated. Without a
/// registered map the text comes back as it is.
QV_EXPORT WString QVTlExt(WString const& text);
