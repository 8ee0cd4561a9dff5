/// \file
/// The public interface of the library: every public header, and only those. Modules of the
/// application include this one header. Headers under internal/ folders and the platform
/// headers that public headers need come in through the headers below; private headers never
/// do (docs/headers.md).
#pragma once

#include <qv/core/BError.h>
#include <qv/core/BSmartObj.h>
#include <qv/core/ClassNameRegistry.h>
#include <qv/core/Export.h>
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
#include <qv/core/strings/WString.h>
#include <qv/operations/BAutoLockR.h>
#include <qv/operations/BAutoLockW.h>
#include <qv/operations/BAutoTryLockR.h>
#include <qv/operations/BAutoTryLockW.h>
#include <qv/operations/BCommandExecutionInterface.h>
#include <qv/operations/BCriticalSection.h>
#include <qv/operations/BDispatcher.h>
#include <qv/operations/BLockRW.h>
#include <qv/operations/BMessageReceiver.h>
#include <qv/operations/BProgressManager.h>
#include <qv/operations/BSyncableInterface.h>
#include <qv/operations/BSyncableSmartObj.h>
#include <qv/operations/ELog.h>
#include <qv/operations/Log.h>
#include <qv/operations/LogItem.h>
#include <qv/operations/LoggerInterface.h>
#include <qv/operations/MessageNumbers.h>
#include <qv/operations/QVPost.h>
#include <qv/persistence/BArchive.h>
#include <qv/persistence/BQuorvelArchive.h>
#include <qv/persistence/BReadObjCallbackMap.h>
#include <qv/persistence/Tupel.h>
#include <qv/platform/WindowsTypes.h>
#include <qv/portable/BSmartObjBase.h>
#include <qv/tree/BAttribute.h>
#include <qv/tree/BNode.h>
#include <qv/tree/BNodeAnnotationItr.h>
#include <qv/tree/BNodeAttribItr.h>
#include <qv/tree/BNodeChildItr.h>
#include <qv/tree/BNodeItr.h>
#include <qv/tree/BVisitor.h>
