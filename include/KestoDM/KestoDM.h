#pragma once

// Kesto DM: every public header of the library.

#include <KestoDM/platform/Any.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/platform/BaDebugEvs.h>
#include <KestoDM/platform/BaEnvVar.h>
#include <KestoDM/platform/BaIndexedVector.h>
#include <KestoDM/platform/BaLeaks.h>
#include <KestoDM/platform/BaLiterals.h>
#include <KestoDM/platform/BaMessageCategory.h>
#include <KestoDM/platform/BaMessageLog.h>
#include <KestoDM/platform/BaMessageRecord.h>
#include <KestoDM/platform/BaMessageRecordContainer.h>
#include <KestoDM/platform/BaMessageTypes.h>
#include <KestoDM/platform/BaSharedLibraryManager.h>
#include <KestoDM/platform/BaSharedLibraryUtils.h>
#include <KestoDM/platform/DefaultClassFunction.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/InputStream.h>
#include <KestoDM/platform/NamingSupport.h>
#include <KestoDM/platform/OutputStream.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/RttiTable.h>
#include <KestoDM/platform/RuntimeAny.h>
#include <KestoDM/platform/RuntimeTypeInfo.h>
#include <KestoDM/platform/SerializationData.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/platform/TypeManager.h>
#include <KestoDM/platform/UntypedArray.h>
#include <KestoDM/platform/UntypedTypeRep.h>

#include <KestoDM/foundation/DmEntity.h>
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmNameUtils.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/foundation/DmOSUtils.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/foundation/DmVersion.h>
#include <KestoDM/foundation/LinkedHashMap.h>
#include <KestoDM/foundation/LinkedHashSet.h>

#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmClassSerialization.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmEnumType.h>
#include <KestoDM/types/DmExternBaseType.h>
#include <KestoDM/types/DmExternSymbol.h>
#include <KestoDM/types/DmMangledName.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmTypeKind.h>
#include <KestoDM/types/DmUninstantiableType.h>
#include <KestoDM/types/DmUnknownStructType.h>
#include <KestoDM/types/DmUnknownType.h>
#include <KestoDM/types/ExternTargetSet.h>

#include <KestoDM/graph/DmCollect.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/graph/DmSelector.h>

#include <KestoDM/library/DmLibrary.h>
