#include <KestoDM/graph/DmScope.h>

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/foundation/DmNameUtils.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/platform/BaMessageTypes.h>

namespace Kesto {

namespace {

bool isRoot(DmScope const& scope) {
    return scope.isGlobalNamespace() || scope.isBuiltInNamespace() || scope.isReservedNamespace();
}

} // namespace

DmScope::DmScope(std::shared_ptr<DmMessageLogger> logger)
    : m_logger(std::move(logger)), m_nestedScopes(std::make_shared<ScopeSet>()),
      m_nodeDefs(std::make_shared<NodeDefMap>()) {}

DmScope::~DmScope() = default;

bool DmScope::isValid() const {
    return true;
}

bool DmScope::isGlobalNamespace() const {
    return false;
}

bool DmScope::isBuiltInNamespace() const {
    return false;
}

bool DmScope::isReservedNamespace() const {
    return false;
}

DmStatus DmScope::addNestedScope(std::shared_ptr<DmScope> const& scope) {
    return m_nestedScopes->insert(scope).second ? DmStatus::kSuccess : DmStatus::kFailure;
}

DmStatus DmScope::removeNestedScope(std::shared_ptr<DmScope> const& scope) {
    return m_nestedScopes->erase(scope) != 0 ? DmStatus::kSuccess : DmStatus::kFailure;
}

void DmScope::resolveScopeName(std::string& out) const {
    if (m_parent == nullptr) {
        if (isRoot(*this)) {
            return;
        }
        // An orphan still gets its own name, so that what is printed stays
        // recognisable; the report tells that the path is cut short.
        if (m_logger) {
            DmNamedEntity const* const entity = getAsNamedEntity();
            std::shared_ptr<DmNamedEntity const> const owner =
                entity != nullptr ? entity->weak_from_this().lock() : nullptr;
            m_logger->reportMessage(std::make_shared<DmMessageReport>(
                owner, BaMessageTypes::kMessageError, "missing parent scope",
                "the scope " + getLocalScopeName() + " does not have a parent"));
        }
    } else if (!isRoot(*m_parent)) {
        // A root contributes neither a name nor a separator.
        m_parent->resolveScopeName(out);
        out.append(kSeparator, kSeparatorLength);
    }
    out += getLocalScopeName();
}

bool DmScope::equalScopeName(DmScope const* other) const {
    if (other == this) {
        return true;
    }
    if (other == nullptr) {
        return false;
    }
    DmScope const* left = this;
    DmScope const* right = other;
    for (;;) {
        if (left->getLocalScopeName() != right->getLocalScopeName()) {
            return false;
        }
        DmScope const* const leftParent = left->getParentScope();
        DmScope const* const rightParent = right->getParentScope();
        if ((leftParent == nullptr) != (rightParent == nullptr)) {
            return false;
        }
        if (leftParent == nullptr) {
            return left->isGlobalNamespace() == right->isGlobalNamespace() &&
                   left->isBuiltInNamespace() == right->isBuiltInNamespace() &&
                   left->isReservedNamespace() == right->isReservedNamespace();
        }
        if (leftParent == rightParent) {
            return true;
        }
        left = leftParent;
        right = rightParent;
    }
}

void DmScope::resolveLocalNameAndScope(std::string const& fullName, std::string& scope, std::string& local) {
    std::string::size_type const at = fullName.rfind(kSeparator, std::string::npos, kSeparatorLength);
    if (at == std::string::npos) {
        local = fullName;
        scope.clear();
        return;
    }
    // `fullName` may be one of the outputs: take both parts before assigning.
    std::string tail = fullName.substr(at + kSeparatorLength);
    scope = fullName.substr(0, at);
    local = std::move(tail);
}

// The name utilities sit below the scopes; this one needs a complete scope,
// so it lives here rather than with its siblings.
std::string& DmNameUtils::computeFullScopeName(DmScope const& scope, std::string& out) {
    out.clear();
    scope.resolveScopeName(out);
    return out;
}

} // namespace Kesto
