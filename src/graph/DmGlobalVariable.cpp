#include <KestoDM/graph/DmGlobalVariable.h>

#include <KestoDM/foundation/DmNameUtils.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBaseValue.h>

namespace Kesto {

// ---------------------------------------------------------------------------
// Construction

std::shared_ptr<DmGlobalVariable> DmGlobalVariable::createGlobalVariable(std::string const& name,
                                                                         DmNameResolveFlags flags) {
    return makeNamed<DmGlobalVariable>(name, flags, InternalConstructor());
}

DmGlobalVariable::DmGlobalVariable(InternalConstructor, std::string name)
    : DmNamedEntity(std::move(name), true) {}

DmGlobalVariable::~DmGlobalVariable() = default;

std::shared_ptr<DmGlobalVariable> DmGlobalVariable::self() {
    return std::static_pointer_cast<DmGlobalVariable>(weak_from_this().lock());
}

// ---------------------------------------------------------------------------
// Identity

std::string DmGlobalVariable::getMapEntryKey() const {
    std::string key;
    resolveFullName(key);
    return key;
}

void DmGlobalVariable::resolveFullName(std::string& out) const {
    if (m_namespace != nullptr) {
        std::string scope;
        DmNameUtils::computeFullScopeName(*m_namespace, scope);
        if (!scope.empty()) {
            out += scope;
            out.append(DmScope::kSeparator, DmScope::kSeparatorLength);
        }
    }
    DmNamedEntity::resolveFullName(out);
}

// ---------------------------------------------------------------------------
// Placement

DmStatus DmGlobalVariable::setNamespace(DmNamespace* ns, DmNameResolutionType resolution) {
    if (resolution != kFailOnClash) {
        return DmStatus::kInvalidArgument;
    }
    std::shared_ptr<DmGlobalVariable> const me = self();
    if (ns == nullptr) {
        if (m_namespace != nullptr) {
            m_namespace->unregisterGlobalVariable(me);
            m_namespace = nullptr;
        }
        return DmStatus::kSuccess;
    }
    if (ns == m_namespace) {
        return DmStatus::kSuccess;
    }
    if (m_namespace != nullptr) {
        m_namespace->unregisterGlobalVariable(me);
    }
    DmStatus const status = ns->registerGlobalVariable(me);
    // On a clash the variable is filed nowhere but still points at its old
    // namespace, which no longer holds it.
    if (status.isSuccess()) {
        m_namespace = ns;
    }
    return status;
}

} // namespace Kesto
