#include <KestoDM/graph/DmWatchPoint.h>

namespace Kesto {

std::shared_ptr<DmWatchPoint> DmWatchPoint::createNew() {
    return std::make_shared<DmWatchPoint>(InternalConstructor());
}

DmWatchPoint::DmWatchPoint(InternalConstructor) : DmEntity(true) {}

DmWatchPoint::~DmWatchPoint() = default;

DmStatus DmWatchPoint::enable(bool enabled) {
    m_enabled = enabled;
    return DmStatus::kSuccess;
}

DmStatus DmWatchPoint::setCallBack(CallBack callBack, void const* clientData) {
    m_callBack = callBack;
    m_clientData = clientData;
    return DmStatus::kSuccess;
}

DmStatus DmWatchPoint::getParameter(std::string const& name, std::string& out) const {
    auto const found = m_parameters.find(name);
    if (found == m_parameters.end()) {
        return DmStatus::kInvalidArgument;
    }
    out = found->second;
    return DmStatus::kSuccess;
}

DmStatus DmWatchPoint::setParameter(std::string const& name, std::string const& value) {
    m_parameters[name] = value;
    return DmStatus::kSuccess;
}

} // namespace Kesto
