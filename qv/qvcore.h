// Everything the library exports. Modules of the application include this one header.
#pragma once

#include <qv/portable/BSmartObjBase.h>

#include <qv/core/BError.h>
#include <qv/core/BSmartObj.h>
#include <qv/core/ClassNameRegistry.h>
#include <qv/core/GetLastErrorMessage.h>
#include <qv/core/Narrowing.h>
#include <qv/core/SP.h>
#include <qv/core/SetThreadName.h>
#include <qv/core/containers/BArray.h>
#include <qv/core/containers/BDictionary.h>
#include <qv/core/containers/BDictionaryItemBase.h>
#include <qv/core/containers/BHashTable.h>
#include <qv/core/containers/BMap.h>
#include <qv/core/containers/DList.h>
#include <qv/core/files/BDirEntry.h>
#include <qv/core/files/BFile.h>
#include <qv/core/files/BMemory.h>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/StringBase.h>
#include <qv/core/strings/StringTraits.h>
#include <qv/core/strings/WString.h>

#include <qv/persistence/BArchive.h>
#include <qv/persistence/BQuorvelArchive.h>
#include <qv/persistence/BReadObjCallbackMap.h>
#include <qv/persistence/Tupel.h>

#include <qv/platform/CodePage.h>
#include <qv/platform/FileSeek.h>
#include <qv/platform/FileStream.h>
#include <qv/platform/FileSystem.h>
#include <qv/platform/PathText.h>
#include <qv/platform/SystemError.h>
#include <qv/platform/TextServices.h>
#include <qv/platform/ThreadName.h>
#include <qv/platform/VirtualMemory.h>
#include <qv/platform/WideFormat.h>
#include <qv/platform/WideNumbers.h>
#include <qv/platform/WideStream.h>
