#pragma once

// Kesto DM: every public header of the library.

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
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/NamingSupport.h>

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

#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include <KestoDM/graph/DmExternOperator.h>

#include <KestoDM/library/DmLibrary.h>
