#pragma once

#include <KestoDM/platform/BaMessageRecordContainer.h>
#include <KestoDM/platform/DmExport.h>

namespace Kesto {

/// The top-level list of messages that a component reports into.
class KESTODM_API BaMessageLog : public BaMessageRecordContainer {
public:
    BaMessageLog();
    ~BaMessageLog() override;
};

} // namespace Kesto
