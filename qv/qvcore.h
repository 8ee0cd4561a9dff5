// Everything the library exports. Modules of the application include this one header.
#pragma once

#include <qv/portable/BSmartObjBase.h>

#include <qv/core/BError.h>
#include <qv/core/Export.h>
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

#include <qv/tree/BAttribute.h>
#include <qv/tree/BNode.h>
#include <qv/tree/BNodeAnnotationItr.h>
#include <qv/tree/BNodeAttribItr.h>
#include <qv/tree/BNodeChildItr.h>
#include <qv/tree/BNodeItr.h>
#include <qv/tree/BVisitor.h>
#include <qv/tree/NodeListItr.h>

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
#include <qv/operations/ReaderSlots.h>

#include <qv/memory/CMemoryBlock.h>
#include <qv/memory/CMemoryBlockManager.h>
#include <qv/memory/CStdMemoryBlock.h>
#include <qv/memory/CStdMemoryManager.h>
#include <qv/memory/QVAlloc.h>

#include <qv/measures/BUnit.h>
#include <qv/measures/BUnitSystem.h>
#include <qv/measures/EUnit.h>
#include <qv/measures/EUnitClass.h>

#include <qv/platform/CodePage.h>
#include <qv/platform/CriticalSection.h>
#include <qv/platform/FileSeek.h>
#include <qv/platform/FileStream.h>
#include <qv/platform/FileSystem.h>
#include <qv/platform/Futex.h>
#include <qv/platform/ManualResetEvent.h>
#include <qv/platform/PathText.h>
#include <qv/platform/ProcessMemory.h>
#include <qv/platform/ProcessWriteBuffers.h>
#include <qv/platform/SlimRWLock.h>
#include <qv/platform/SystemError.h>
#include <qv/platform/TextServices.h>
#include <qv/platform/ThreadId.h>
#include <qv/platform/ThreadLocalStorage.h>
#include <qv/platform/ThreadName.h>
#include <qv/platform/VirtualMemory.h>
#include <qv/platform/WideFormat.h>
#include <qv/platform/WideNumbers.h>
#include <qv/platform/WideStream.h>
#include <qv/platform/WindowsTypes.h>
