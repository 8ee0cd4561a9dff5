/// \file
/// The public interface of the library: every public header, and only those. Modules of the
/// application include this one header. Headers under internal/ folders and the platform
/// headers that public headers need come in through the headers below; private headers never
/// do (docs/headers.md).
#pragma once

#include <qv/portable/BSmartObjBase.h>

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

#include <qv/persistence/BArchive.h>
#include <qv/persistence/BArchiveInspector.h>
#include <qv/persistence/BIStreamArchive.h>
#include <qv/persistence/BOStreamArchive.h>
#include <qv/persistence/BQuorvelArchive.h>
#include <qv/persistence/BReadObjCallbackMap.h>
#include <qv/persistence/Tupel.h>

#include <qv/tree/BAttribute.h>
#include <qv/tree/BBank.h>
#include <qv/tree/BNode.h>
#include <qv/tree/BNodeAnnotationItr.h>
#include <qv/tree/BNodeAttribItr.h>
#include <qv/tree/BNodeChildItr.h>
#include <qv/tree/BNodeItr.h>
#include <qv/tree/BVisitor.h>

#include <qv/profiles/BBinProfile.h>
#include <qv/profiles/BCamProfile.h>
#include <qv/profiles/BConfig.h>
#include <qv/profiles/BConfigRegistry.h>
#include <qv/profiles/BIniProfile.h>
#include <qv/profiles/BProfile.h>
#include <qv/profiles/BProfileBase.h>
#include <qv/profiles/BProfileMap.h>
#include <qv/profiles/BSensorProfile.h>
#include <qv/profiles/BVarMemBlock.h>
#include <qv/profiles/BVariant.h>
#include <qv/profiles/EProfileMode.h>
#include <qv/profiles/IProfile.h>
#include <qv/profiles/OpenProfile.h>
#include <qv/profiles/TVariant.h>

#include <qv/language/BLanguageMap.h>
#include <qv/language/BResId.h>
#include <qv/language/QVTl.h>

#include <qv/operations/AsyncResult.h>
#include <qv/operations/BAsyncOperationInterface.h>
#include <qv/operations/BAutoLockR.h>
#include <qv/operations/BAutoLockW.h>
#include <qv/operations/BAutoTryLockR.h>
#include <qv/operations/BAutoTryLockW.h>
#include <qv/operations/BCommandExecutionInterface.h>
#include <qv/operations/BCriticalSection.h>
#include <qv/operations/BDispatcher.h>
#include <qv/operations/BLockRW.h>
#include <qv/operations/BMessageReceiver.h>
#include <qv/operations/BOperationInterface.h>
#include <qv/operations/BProgressManager.h>
#include <qv/operations/BProgressMapping.h>
#include <qv/operations/BProgressMappingAndBreak.h>
#include <qv/operations/BProgressMappingOMP.h>
#include <qv/operations/BSyncOperationInterface.h>
#include <qv/operations/BSyncableInterface.h>
#include <qv/operations/BSyncableSmartObj.h>
#include <qv/operations/ELog.h>
#include <qv/operations/IFunctor.h>
#include <qv/operations/IFuture.h>
#include <qv/operations/IPromise.h>
#include <qv/operations/IScheduler.h>
#include <qv/operations/Log.h>
#include <qv/operations/LogItem.h>
#include <qv/operations/LoggerInterface.h>
#include <qv/operations/MessageNumbers.h>
#include <qv/operations/QVPost.h>

#include <qv/memory/CMemoryBlock.h>
#include <qv/memory/CMemoryBlockManager.h>
#include <qv/memory/CStdMemoryBlock.h>
#include <qv/memory/CStdMemoryManager.h>
#include <qv/memory/QVAlloc.h>

#include <qv/measures/B2DArrayBase.h>
#include <qv/measures/BBitArray.h>
#include <qv/measures/BFColor.h>
#include <qv/measures/BFPoint.h>
#include <qv/measures/BFRect.h>
#include <qv/measures/BFramesPerSecondCounter.h>
#include <qv/measures/BGuid.h>
#include <qv/measures/BMatrix2x3.h>
#include <qv/measures/BPoint.h>
#include <qv/measures/BProfiler.h>
#include <qv/measures/BRect.h>
#include <qv/measures/BRectItr.h>
#include <qv/measures/BRgb.h>
#include <qv/measures/BRgba.h>
#include <qv/measures/BSha1.h>
#include <qv/measures/BSize.h>
#include <qv/measures/BStopWatch.h>
#include <qv/measures/BUnit.h>
#include <qv/measures/BUnitSystem.h>
#include <qv/measures/Date.h>
#include <qv/measures/EUnit.h>
#include <qv/measures/EUnitClass.h>
#include <qv/measures/Time.h>

#include <qv/platform/WindowsTypes.h>
